#include <algorithm>
#include <limits>
#include <utility>

#include "Factorization/CutDirections.h"
#include "Factorization/Ordering.h"
#include "Factorization/Part.h"
#include "Factorization/PlaneCut.h"
#include "Factorization/SeparatorRefinement.h"

namespace gavrel {

namespace {

using Vertex = std::int32_t;

/// Parts of so many vertices are ordered by least degree.
constexpr std::int32_t smallestPart = 64;

/// Operations of a factorization in the time that the choice of a direction takes for a neighbour in the part.
constexpr double operationsOfChoice = 30;

/// Separators of so many unknowns are worth a refinement.
constexpr std::int64_t smallestRefined = 100;

class Dissection {
 public:
  Dissection(const NodeGraph& graph, const std::atomic<bool>& stop)
      : graph_(graph), stop_(stop), numbers_(graph.blocks.size(), -1) {}

  std::vector<Vertex> run(const Part& whole) {
    std::vector<Vertex> order(whole.vertices.size());
    dissect(whole, listDirections(whole), std::numeric_limits<double>::infinity(), order);
    return order;
  }

 private:
  /// `directions` are worth a look, and the separator of the part from its sibling has so many unknowns.
  void dissect(const Part& part, std::vector<Direction> directions, double unknowns, std::span<Vertex> order) {
    giveUpIf(stop_);
    if (part.size() <= smallestPart) {
      std::ranges::copy(part.vertices, order.begin());
      orderByLeastDegree(graph_, order, numbers_);
      return;
    }
    // A separator costs the cube of its unknowns. If the last one cost little, any direction will do.
    const bool isWorthChoice =
        unknowns * unknowns * unknowns > operationsOfChoice * static_cast<double>(part.neighbours.size());
    const std::vector<Side> sides =
        cut(part, isWorthChoice ? chooseDirection(part, directions) : findLongestAxis(part));
    const Part low = part.take(Side::Low, sides);
    const Part high = part.take(Side::High, sides);
    auto end = order.begin() + low.size() + high.size();
    std::int64_t separator = 0;
    for (std::int32_t vertex = 0; vertex < part.size(); ++vertex) {
      if (sides[vertex] != Side::Separator) continue;
      *end++ = part.vertices[vertex];
      separator += part.unknowns[vertex];
    }
    const auto parent = static_cast<double>(separator);
    dissect(low, directions, parent, order.first(low.vertices.size()));
    dissect(high, std::move(directions), parent, order.subspan(low.vertices.size(), high.vertices.size()));
  }

  static std::vector<Side> cut(const Part& part, const Direction& direction) {
    std::vector<Side> sides = cutByPlane(part, direction);
    std::int64_t separator = 0;
    for (std::int32_t vertex = 0; vertex < part.size(); ++vertex)
      if (sides[vertex] == Side::Separator) separator += part.unknowns[vertex];
    if (separator >= smallestRefined) refineSeparator(part, sides);
    return sides;
  }

  const NodeGraph& graph_;
  const std::atomic<bool>& stop_;
  std::vector<std::int32_t> numbers_;  // work space, -1 between uses
};

}  // namespace

std::vector<Vertex> dissectByCoordinates(const NodeGraph& graph, std::span<const double> coordinates,
                                         const std::atomic<bool>& stop) {
  return Dissection(graph, stop).run(Part::whole(graph, coordinates));
}

}  // namespace gavrel
