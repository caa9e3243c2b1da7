#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>

#include "Factorization/Ordering.h"
#include "Factorization/VertexCover.h"

namespace gavrel {

namespace {

using Vertex = std::int32_t;
using Direction = std::array<double, 3>;

/// Parts of so many vertices are ordered by least degree.
constexpr std::int32_t smallestPart = 64;

/// A cut is looked for between these quantiles of a part.
constexpr double windowStart = 0.4;
constexpr double windowEnd = 0.6;

class Dissection {
 public:
  Dissection(const NodeGraph& graph, std::span<const double> coordinates)
      : graph_(graph),
        X_(coordinates),
        order_(graph.blocks.size()),
        place_(order_.size()),
        key_(order_.size()),
        numberOf_(order_.size(), -1) {
    std::iota(order_.begin(), order_.end(), 0);
    std::iota(place_.begin(), place_.end(), 0);
  }

  std::vector<Vertex> run() {
    std::vector<Range> waiting{{0, graph_.size()}};
    while (!waiting.empty()) {
      const Range range = waiting.back();
      waiting.pop_back();
      if (range.end - range.begin <= smallestPart) {
        orderByLeastDegree(graph_, std::span(order_).subspan(range.begin, range.end - range.begin), numberOf_);
        continue;
      }
      const auto [low, high] = split(range);
      waiting.push_back(low);
      waiting.push_back(high);
    }
    return std::move(order_);
  }

 private:
  struct Range {
    std::int32_t begin;
    std::int32_t end;
  };

  [[nodiscard]] double coordinate(Vertex vertex, int axis) const { return X_[3 * std::size_t(vertex) + axis]; }

  /// The axis along which the vertices of the range extend the most.
  [[nodiscard]] Direction longestDirection(Range range) const {
    Direction low;
    Direction high;
    low.fill(std::numeric_limits<double>::infinity());
    high.fill(-std::numeric_limits<double>::infinity());
    for (std::int32_t i = range.begin; i < range.end; ++i) {
      for (int axis = 0; axis < 3; ++axis) {
        low[axis] = std::min(low[axis], coordinate(order_[i], axis));
        high[axis] = std::max(high[axis], coordinate(order_[i], axis));
      }
    }
    int longest = 0;
    for (int axis = 1; axis < 3; ++axis)
      if (high[axis] - low[axis] > high[longest] - low[longest]) longest = axis;
    Direction direction{};
    direction[longest] = 1;
    return direction;
  }

  /// Puts the vertices of the range in order along a direction, as far as the window needs it: those before and behind
  /// it stay as they are.
  void arrange(Range range, const Direction& direction, std::int32_t windowBegin, std::int32_t windowFinish) {
    for (std::int32_t i = range.begin; i < range.end; ++i) {
      const Vertex vertex = order_[i];
      key_[vertex] = direction[0] * coordinate(vertex, 0) + direction[1] * coordinate(vertex, 1) +
                     direction[2] * coordinate(vertex, 2);
    }
    const auto isBefore = [this](Vertex a, Vertex b) {
      if (key_[a] != key_[b]) return key_[a] < key_[b];
      for (int axis = 0; axis < 3; ++axis)
        if (coordinate(a, axis) != coordinate(b, axis)) return coordinate(a, axis) < coordinate(b, axis);
      return a < b;
    };
    const auto first = order_.begin();
    std::nth_element(first + range.begin, first + windowBegin, first + range.end, isBefore);
    if (windowFinish < range.end)
      std::nth_element(first + windowBegin, first + windowFinish, first + range.end, isBefore);
    std::sort(first + windowBegin, first + windowFinish, isBefore);
    for (std::int32_t i = range.begin; i < range.end; ++i) place_[order_[i]] = i;
  }

  struct Cut {
    std::int32_t place;  // the parts meet here
    std::int64_t separator;
  };

  /// The place in the window where fewest unknowns of one side touch the other.
  [[nodiscard]] std::int32_t bestCut(Range range, std::int32_t windowBegin, std::int32_t windowFinish) const {
    // touching[p]: change of the unknowns below (above) p with a neighbour at or above (below) p, from p - 1 to p.
    std::vector<std::int64_t> below(windowFinish - windowBegin + 2);
    std::vector<std::int64_t> above(below.size());
    const auto clip = [&](std::int32_t place) {
      return std::clamp(place, windowBegin, windowFinish + 1) - windowBegin;
    };
    for (std::int32_t i = range.begin; i < range.end; ++i) {
      std::int32_t lowest = i;
      std::int32_t highest = i;
      for (const Vertex other : graph_.neighboursAt(order_[i])) {
        const std::int32_t place = place_[other];
        if (place < range.begin || place >= range.end) continue;
        lowest = std::min(lowest, place);
        highest = std::max(highest, place);
      }
      const std::int64_t unknowns = graph_.unknowns(order_[i]);
      below[clip(i + 1)] += unknowns;  // a cut at p in (i, highest] has it below, with a neighbour above
      below[clip(highest + 1)] -= unknowns;
      above[clip(lowest + 1)] += unknowns;  // a cut at p in (lowest, i] has it above, with a neighbour below
      above[clip(i + 1)] -= unknowns;
    }
    std::inclusive_scan(below.begin(), below.end(), below.begin());
    std::inclusive_scan(above.begin(), above.end(), above.begin());
    std::int32_t best = windowBegin;
    double least = std::numeric_limits<double>::infinity();
    const double middle = 0.5 * (range.begin + range.end);
    for (std::int32_t p = windowBegin; p <= windowFinish; ++p) {
      const auto separator = static_cast<double>(std::min(below[p - windowBegin], above[p - windowBegin]));
      const double imbalance = std::abs(p - middle) / (range.end - range.begin);
      const double cost = separator * (1 + imbalance);
      if (cost < least) {
        least = cost;
        best = p;
      }
    }
    return best;
  }

  /// Cuts the range: afterwards it holds both parts and then the separator.
  std::pair<Range, Range> split(Range range) {
    const std::int32_t size = range.end - range.begin;
    const auto windowBegin = range.begin + std::max(1, static_cast<std::int32_t>(size * windowStart));
    const auto windowFinish = range.begin + static_cast<std::int32_t>(size * windowEnd);
    arrange(range, longestDirection(range), windowBegin, windowFinish);
    const std::int32_t cut = bestCut(range, windowBegin, windowFinish);

    const std::vector<Vertex> separator = separate(range, cut);
    for (const Vertex vertex : separator) place_[vertex] = -1;
    const auto first = order_.begin();
    const auto isKept = [this](Vertex vertex) { return place_[vertex] >= 0; };
    const auto lowEnd = std::stable_partition(first + range.begin, first + cut, isKept);
    const auto highEnd = std::copy_if(first + cut, first + range.end, lowEnd, isKept);
    std::copy(separator.begin(), separator.end(), highEnd);
    for (std::int32_t i = range.begin; i < range.end; ++i) place_[order_[i]] = i;
    const auto middle = static_cast<std::int32_t>(lowEnd - first);
    return {{range.begin, middle}, {middle, static_cast<std::int32_t>(highEnd - first)}};
  }

  /// The fewest vertices of the range whose removal parts those before the cut from those behind it, in the order of
  /// their places.
  [[nodiscard]] std::vector<Vertex> separate(Range range, std::int32_t cut) {
    BoundaryGraph boundary;
    std::vector<Vertex> low;
    std::vector<Vertex> high;
    for (std::int32_t i = range.begin; i < cut; ++i) {
      bool touches = false;
      for (const Vertex other : graph_.neighboursAt(order_[i])) {
        const std::int32_t place = place_[other];
        if (place < cut || place >= range.end) continue;
        if (numberOf_[other] < 0) {
          numberOf_[other] = static_cast<std::int32_t>(high.size());
          high.push_back(other);
        }
        boundary.partners.push_back(numberOf_[other]);
        touches = true;
      }
      if (!touches) continue;
      low.push_back(order_[i]);
      boundary.starts.push_back(static_cast<std::int32_t>(boundary.partners.size()));
    }
    boundary.rights = static_cast<std::int32_t>(high.size());
    for (const Vertex vertex : high) numberOf_[vertex] = -1;

    const VertexCover cover = coverEdges(boundary);
    std::vector<Vertex> separator;
    for (std::size_t i = 0; i < low.size(); ++i)
      if (cover.left[i]) separator.push_back(low[i]);
    for (std::size_t i = 0; i < high.size(); ++i)
      if (cover.right[i]) separator.push_back(high[i]);
    std::ranges::sort(separator, {}, [this](Vertex vertex) { return place_[vertex]; });
    return separator;
  }

  const NodeGraph& graph_;
  std::span<const double> X_;
  std::vector<Vertex> order_;
  std::vector<std::int32_t> place_;  // of each vertex in the order
  std::vector<double> key_;
  std::vector<std::int32_t> numberOf_;  // work space, -1 between uses
};

}  // namespace

std::vector<Vertex> dissectByCoordinates(const NodeGraph& graph, std::span<const double> coordinates) {
  return Dissection(graph, coordinates).run();
}

}  // namespace gavrel
