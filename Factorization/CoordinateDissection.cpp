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
constexpr double smallestRefined = 100;

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
    const bool isChosen = isWorthChoice(part, unknowns);
    std::vector<Side> sides =
        cutByPlane(part, isChosen ? chooseDirection(part, directions) : findLongest(part, directions));
    if (!isChosen && isWorthChoice(part, countSeparator(part, sides)))
      sides = cutByPlane(part, chooseDirection(part, directions));
    if (countSeparator(part, sides) >= smallestRefined) refineSeparator(part, sides);
    const Part low = part.take(Side::Low, sides);
    const Part high = part.take(Side::High, sides);
    auto end = order.begin() + low.size() + high.size();
    for (std::int32_t vertex = 0; vertex < part.size(); ++vertex)
      if (sides[vertex] == Side::Separator) *end++ = part.vertices[vertex];
    unknowns = countSeparator(part, sides);
    dissect(low, directions, unknowns, order.first(low.vertices.size()));
    dissect(high, std::move(directions), unknowns, order.subspan(low.vertices.size(), high.vertices.size()));
  }

  static double countSeparator(const Part& part, std::span<const Side> sides) {
    std::int64_t unknowns = 0;
    for (std::int32_t vertex = 0; vertex < part.size(); ++vertex)
      if (sides[vertex] == Side::Separator) unknowns += part.unknowns[vertex];
    return static_cast<double>(unknowns);
  }

  /// Whether the choice of a direction costs less than a separator of so many unknowns.
  static bool isWorthChoice(const Part& part, double unknowns) {
    return unknowns * unknowns * unknowns > operationsOfChoice * static_cast<double>(part.neighbours.size());
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
