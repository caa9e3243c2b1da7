#include "Factorization/PlaneCut.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "Factorization/VertexCover.h"

namespace gavrel {

namespace {

using Numbers = std::vector<std::int32_t>;

class PlaneCut {
 public:
  explicit PlaneCut(const Part& part)
      : part_(part),
        windowBegin_(std::max(1, static_cast<std::int32_t>(part.size() * windowStart))),
        windowEnd_(std::max(windowBegin_, static_cast<std::int32_t>(part.size() * windowEnd))),
        order_(part.vertices.size()),
        place_(part.vertices.size()) {}

  std::vector<Side> run(const Direction& direction) {
    arrange(direction);
    return separate(findCut());
  }

 private:
  /// Puts the vertices in order along a direction, as far as the window needs it: those before and behind it stand in
  /// any order.
  void arrange(const Direction& direction) {
    std::vector<double> key(order_.size());
    for (std::int32_t vertex = 0; vertex < part_.size(); ++vertex) key[vertex] = project(part_, vertex, direction);
    const auto isBefore = [&](std::int32_t a, std::int32_t b) {
      if (key[a] != key[b]) return key[a] < key[b];
      for (std::int64_t axis = 0; axis < 3; ++axis) {
        const double x = part_.coordinates[3 * std::int64_t{a} + axis];
        const double y = part_.coordinates[3 * std::int64_t{b} + axis];
        if (x != y) return x < y;
      }
      return a < b;
    };
    std::iota(order_.begin(), order_.end(), 0);
    const auto first = order_.begin();
    std::nth_element(first, first + windowBegin_, order_.end(), isBefore);
    if (windowEnd_ < part_.size()) std::nth_element(first + windowBegin_, first + windowEnd_, order_.end(), isBefore);
    std::sort(first + windowBegin_, first + windowEnd_, isBefore);
    for (std::int32_t i = 0; i < part_.size(); ++i) place_[order_[i]] = i;
  }

  /// The place in the window where fewest unknowns of one side touch the other.
  [[nodiscard]] std::int32_t findCut() const {
    // At p: change of the unknowns below (above) p with a neighbour at or above (below) p, from p - 1 to p.
    std::vector<std::int64_t> below(windowEnd_ - windowBegin_ + 2);
    std::vector<std::int64_t> above(below.size());
    const auto clip = [&](std::int32_t place) {
      return std::clamp(place, windowBegin_, windowEnd_ + 1) - windowBegin_;
    };
    for (std::int32_t vertex = 0; vertex < part_.size(); ++vertex) {
      const std::int32_t place = place_[vertex];
      std::int32_t lowest = place;
      std::int32_t highest = place;
      for (const std::int32_t other : part_.neighboursAt(vertex)) {
        lowest = std::min(lowest, place_[other]);
        highest = std::max(highest, place_[other]);
      }
      const std::int64_t unknowns = part_.unknowns[vertex];
      below[clip(place + 1)] += unknowns;  // a cut at p in (place, highest] has it below, with a neighbour above
      below[clip(highest + 1)] -= unknowns;
      above[clip(lowest + 1)] += unknowns;  // a cut at p in (lowest, place] has it above, with a neighbour below
      above[clip(place + 1)] -= unknowns;
    }
    std::inclusive_scan(below.begin(), below.end(), below.begin());
    std::inclusive_scan(above.begin(), above.end(), above.begin());
    std::int32_t best = windowBegin_;
    double least = std::numeric_limits<double>::infinity();
    for (std::int32_t p = windowBegin_; p <= windowEnd_; ++p) {
      const auto separator = static_cast<double>(std::min(below[p - windowBegin_], above[p - windowBegin_]));
      const double imbalance = std::abs(p - 0.5 * part_.size()) / part_.size();
      const double cost = separator * (1 + imbalance);
      if (cost < least) {
        least = cost;
        best = p;
      }
    }
    return best;
  }

  /// The sides when the fewest vertices are taken out that part those before the cut from those behind it.
  [[nodiscard]] std::vector<Side> separate(std::int32_t cut) const {
    std::vector<Side> sides(order_.size(), Side::Low);
    for (auto i = cut; i < part_.size(); ++i) sides[order_[i]] = Side::High;
    BoundaryGraph boundary;
    Numbers low;
    Numbers high;
    Numbers number(order_.size(), -1);
    for (std::int32_t vertex = 0; vertex < part_.size(); ++vertex) {
      if (sides[vertex] == Side::High) continue;
      const auto partners = boundary.partners.size();
      for (const std::int32_t other : part_.neighboursAt(vertex)) {
        if (sides[other] == Side::Low) continue;
        if (number[other] < 0) {
          number[other] = static_cast<std::int32_t>(high.size());
          high.push_back(other);
        }
        boundary.partners.push_back(number[other]);
      }
      if (boundary.partners.size() == partners) continue;
      low.push_back(vertex);
      boundary.starts.push_back(static_cast<std::int32_t>(boundary.partners.size()));
    }
    boundary.rights = static_cast<std::int32_t>(high.size());

    const VertexCover cover = coverEdges(boundary);
    for (std::size_t i = 0; i < low.size(); ++i)
      if (cover.left[i]) sides[low[i]] = Side::Separator;
    for (std::size_t i = 0; i < high.size(); ++i)
      if (cover.right[i]) sides[high[i]] = Side::Separator;
    return sides;
  }

  const Part& part_;
  std::int32_t windowBegin_;
  std::int32_t windowEnd_;
  Numbers order_;
  Numbers place_;  // of each vertex in the order
};

}  // namespace

std::vector<Side> cutByPlane(const Part& part, const Direction& direction) {
  return PlaneCut(part).run(direction);
}

}  // namespace gavrel
