#include "Factorization/CutDirections.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <optional>

namespace gavrel {

namespace {

constexpr std::int32_t sampleSize = 700;
constexpr std::int32_t leastStride = 2;
constexpr std::int32_t manyVertices = 4096;

/// Directions that appear less often among the edges are no feature of the structure.
constexpr double frequentPart = 0.05;
constexpr std::size_t mostOfEdges = 9;

/// Cosine of directions that are taken for the same.
constexpr double same = 0.999;

/// Ratings beyond this times the best are bad; the longest direction is taken if the best is no less than this times
/// it.
constexpr double muchWorse = 2;
constexpr double almostAsGood = 0.9;

double multiply(const Direction& a, const Direction& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

std::optional<Direction> normalize(Direction direction) {
  const double length = std::sqrt(multiply(direction, direction));
  if (!(length > 0) || !std::isfinite(length)) return std::nullopt;
  for (double& x : direction) x /= length;
  return direction;
}

bool hasAlike(std::span<const Direction> directions, const Direction& direction) {
  return std::ranges::any_of(directions,
                             [&](const Direction& other) { return std::abs(multiply(direction, other)) > same; });
}

/// Calls with at most about so many vertices, in equal steps.
template <class Visit>
void forEachInSample(const Part& part, std::int32_t size, Visit&& visit) {
  const std::int32_t stride = std::max(leastStride, part.size() / size);
  for (std::int32_t vertex = 0; vertex < part.size(); vertex += stride) visit(vertex);
}

/// Directions of many edges, the most frequent first.
std::vector<Direction> findEdgeDirections(const Part& part) {
  struct Bundle {
    Direction direction{};
    int edges = 0;
  };
  std::map<std::array<int, 3>, Bundle> bundles;
  int vertices = 0;
  forEachInSample(part, manyVertices, [&](std::int32_t vertex) {
    ++vertices;
    for (const std::int32_t other : part.neighboursAt(vertex)) {
      Direction along{};
      for (std::int64_t axis = 0; axis < 3; ++axis)
        along[axis] =
            part.coordinates[3 * std::int64_t{other} + axis] - part.coordinates[3 * std::int64_t{vertex} + axis];
      auto direction = normalize(along);
      if (!direction) continue;
      std::array<int, 3> rounded{};
      for (std::size_t axis = 0; axis < 3; ++axis)
        rounded[axis] = static_cast<int>(std::lround((*direction)[axis] * 100));
      if (rounded < std::array<int, 3>{}) {
        for (int& x : rounded) x = -x;
        for (double& x : *direction) x = -x;
      }
      Bundle& bundle = bundles[rounded];
      bundle.direction = *direction;
      ++bundle.edges;
    }
  });
  std::vector<Bundle> sorted;
  for (const auto& [rounded, bundle] : bundles)
    if (bundle.edges > frequentPart * vertices) sorted.push_back(bundle);
  std::ranges::stable_sort(sorted, std::ranges::greater(), &Bundle::edges);
  std::vector<Direction> directions;
  for (const Bundle& bundle : sorted)
    if (directions.size() < mostOfEdges && !hasAlike(directions, bundle.direction))
      directions.push_back(bundle.direction);
  return directions;
}

/// The axes of inertia of a sample, by Jacobi's rotations.
std::array<Direction, 3> findInertiaAxes(const Part& part) {
  Direction middle{};
  double count = 0;
  forEachInSample(part, sampleSize, [&](std::int32_t vertex) {
    for (std::int64_t axis = 0; axis < 3; ++axis) middle[axis] += part.coordinates[3 * std::int64_t{vertex} + axis];
    ++count;
  });
  for (double& x : middle) x /= count;
  std::array<Direction, 3> moments{};
  forEachInSample(part, sampleSize, [&](std::int32_t vertex) {
    Direction from{};
    for (std::int64_t axis = 0; axis < 3; ++axis)
      from[axis] = part.coordinates[3 * std::int64_t{vertex} + axis] - middle[axis];
    for (std::size_t i = 0; i < 3; ++i)
      for (std::size_t j = 0; j < 3; ++j) moments[i][j] += from[i] * from[j];
  });
  std::array<Direction, 3> axes{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  const auto rotate = [](double& a, double& b, double cosine, double sine) {
    const double was = a;
    a = cosine * was - sine * b;
    b = sine * was + cosine * b;
  };
  for (int sweep = 0; sweep < 8; ++sweep) {
    for (const auto& [p, q] : {std::pair(0, 1), std::pair(0, 2), std::pair(1, 2)}) {
      if (std::abs(moments[p][q]) <= 1e-9 * (moments[p][p] + moments[q][q])) continue;
      const double angle = 0.5 * std::atan2(2 * moments[p][q], moments[q][q] - moments[p][p]);
      const double cosine = std::cos(angle);
      const double sine = std::sin(angle);
      for (Direction& row : moments) rotate(row[p], row[q], cosine, sine);
      for (std::size_t k = 0; k < 3; ++k) rotate(moments[p][k], moments[q][k], cosine, sine);
      for (std::size_t k = 0; k < 3; ++k) rotate(axes[p][k], axes[q][k], cosine, sine);
    }
  }
  return axes;
}

/// The part of the sample that touches the other side of a cut, on average over the window of cuts.
double rate(const Part& part, const Direction& direction) {
  std::vector<double> keys;
  forEachInSample(part, sampleSize, [&](std::int32_t vertex) { keys.push_back(project(part, vertex, direction)); });
  std::vector<double> sorted = keys;
  const auto quantile = [&](double share) {
    const auto nth = sorted.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(sorted.size()));
    std::nth_element(sorted.begin(), nth, sorted.end());
    return *nth;
  };
  const double low = quantile(windowStart);
  const double high = quantile(windowEnd);
  if (!(high > low)) return std::numeric_limits<double>::infinity();
  double below = 0;
  double above = 0;
  std::size_t i = 0;
  forEachInSample(part, sampleSize, [&](std::int32_t vertex) {
    const double key = keys[i++];
    double least = key;
    double most = key;
    for (const std::int32_t other : part.neighboursAt(vertex)) {
      const double there = project(part, other, direction);
      least = std::min(least, there);
      most = std::max(most, there);
    }
    below += std::max(0.0, std::min(most, high) - std::max(key, low));
    above += std::max(0.0, std::min(key, high) - std::max(least, low));
  });
  return std::min(below, above) / (high - low) / static_cast<double>(keys.size());
}

}  // namespace

std::vector<Direction> listDirections(const Part& whole) {
  std::vector<Direction> directions{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  const auto add = [&](const Direction& direction) {
    if (!hasAlike(directions, direction)) directions.push_back(direction);
  };
  std::ranges::for_each(findEdgeDirections(whole), add);
  const double half = std::sqrt(0.5);
  for (const double other : {half, -half})
    for (const Direction& direction : {Direction{half, other, 0}, {half, 0, other}, {0, half, other}}) add(direction);
  return directions;
}

Direction findLongest(const Part& part, std::span<const Direction> directions) {
  Direction longest = directions.front();
  double most = 0;
  for (const Direction& direction : directions) {
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    forEachInSample(part, sampleSize, [&](std::int32_t vertex) {
      const double key = project(part, vertex, direction);
      low = std::min(low, key);
      high = std::max(high, key);
    });
    if (high - low <= most) continue;
    most = high - low;
    longest = direction;
  }
  return longest;
}

Direction chooseDirection(const Part& part, std::vector<Direction>& directions) {
  const Direction longest = findLongest(part, directions);
  Direction best = longest;
  double least = rate(part, longest);
  const double clearlyLess = almostAsGood * least;
  const auto consider = [&](const Direction& direction) {
    const double rating = rate(part, direction);
    if (rating < least) best = direction;
    least = std::min(least, rating);
    return rating;
  };
  std::vector<double> ratings;
  ratings.reserve(directions.size());
  for (const Direction& direction : directions) ratings.push_back(consider(direction));
  std::vector<Direction> all = directions;
  for (const Direction& axis : findInertiaAxes(part)) {
    if (hasAlike(all, axis)) continue;
    all.push_back(axis);
    consider(axis);
  }
  std::vector<Direction> kept;
  for (std::size_t i = 0; i < directions.size(); ++i)
    if (ratings[i] <= muchWorse * least) kept.push_back(directions[i]);
  if (kept.empty()) kept.push_back(best);
  directions = std::move(kept);
  return least < clearlyLess ? best : longest;
}

}  // namespace gavrel
