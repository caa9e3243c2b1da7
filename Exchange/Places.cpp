#include "Exchange/Places.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace gavrel {

namespace {

using Wide = std::numeric_limits<long double>;
static_assert(Wide::max_exponent > 2 * std::numeric_limits<double>::max_exponent && Wide::digits >= 64);

constexpr std::size_t leafSize = 8;
constexpr std::int64_t none = std::numeric_limits<std::int64_t>::max();
constexpr long double edge = 4;           // of a cube, in tolerances
constexpr long double reach = 1 + 1e-9L;  // of the search, in tolerances, with room for rounding

constexpr std::array axes{&Vector3::x, &Vector3::y, &Vector3::z};

std::size_t findMiddle(std::size_t begin, std::size_t end) {
  return begin + (end - begin) / 2;
}

}  // namespace

double distance(const Vector3& a, const Vector3& b) {
  return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

Places::Places(const std::vector<Vector3>& places, double tolerance)
    : tolerance_(tolerance), count_(std::ssize(places)) {
  tree_.reserve(places.size());
  for (std::int64_t number = 0; const Vector3& place : places) tree_.push_back({number++, place});
  if (tree_.empty()) return;
  boxes_.resize(4 * std::bit_ceil((tree_.size() + leafSize - 1) / leafSize));
  enclose(0, 0, tree_.size());
}

/// Divides the nodes of a box between its two parts, along its longest edge.
void Places::enclose(std::size_t box, std::size_t begin, std::size_t end) {
  Box& bounds = boxes_[box];
  bounds = {tree_[begin].place, tree_[begin].place, tree_[begin].number};
  for (std::size_t i = begin + 1; i < end; ++i) {
    bounds.firstNumber = std::min(bounds.firstNumber, tree_[i].number);
    for (const auto axis : axes) {
      bounds.low.*axis = std::min(bounds.low.*axis, tree_[i].place.*axis);
      bounds.high.*axis = std::max(bounds.high.*axis, tree_[i].place.*axis);
    }
  }
  if (end - begin <= leafSize) return;
  const auto longest =
      *std::ranges::max_element(axes, {}, [&bounds](auto axis) { return bounds.high.*axis - bounds.low.*axis; });
  const std::size_t middle = findMiddle(begin, end);
  const auto at = [this](std::size_t i) { return tree_.begin() + static_cast<std::ptrdiff_t>(i); };
  std::ranges::nth_element(at(begin), at(middle), at(end), {},
                           [longest](const Node& node) { return node.place.*longest; });
  enclose(2 * box + 1, begin, middle);
  enclose(2 * box + 2, middle, end);
}

std::int64_t Places::findOrAddNode(const Vector3& place) {
  Nearest nearest{tolerance_, none};
  searchCubes(place, nearest);
  if (!tree_.empty()) searchTree(0, 0, tree_.size(), place, nearest);
  if (nearest.number != none) return nearest.number;
  cubes_[cubeAt(place, 0)].push_back({count_, place});
  return count_++;
}

void Places::compare(const Node& node, const Vector3& place, Nearest& nearest) {
  ++comparisons_;
  nearest = std::min(nearest, {distance(node.place, place), node.number});
}

/// The smallest distance, and the lowest number, that a node of this box can have.
Places::Nearest Places::nearestIn(std::size_t box, const Vector3& place) {
  ++comparisons_;
  const auto& [low, high, firstNumber] = boxes_[box];
  const Vector3 inside{std::clamp(place.x, low.x, high.x), std::clamp(place.y, low.y, high.y),
                       std::clamp(place.z, low.z, high.z)};
  return {distance(inside, place), firstNumber};
}

/// Searches a box and its parts, the nearer part first, unless they cannot hold a nearer node.
void Places::searchTree(std::size_t box, std::size_t begin, std::size_t end, const Vector3& place, Nearest& nearest) {
  if (end - begin <= leafSize) {
    for (std::size_t i = begin; i < end; ++i) compare(tree_[i], place, nearest);
    return;
  }
  const std::size_t middle = findMiddle(begin, end);
  const Nearest first = nearestIn(2 * box + 1, place);
  const Nearest second = nearestIn(2 * box + 2, place);
  const auto searchFirst = [&] {
    if (first < nearest) searchTree(2 * box + 1, begin, middle, place, nearest);
  };
  if (first < second) searchFirst();
  if (second < nearest) searchTree(2 * box + 2, middle, end, place, nearest);
  if (!(first < second)) searchFirst();
}

/// Searches the cubes around the place: one or two along each axis.
void Places::searchCubes(const Vector3& place, Nearest& nearest) {
  const Cube low = cubeAt(place, -reach);
  const Cube high = cubeAt(place, reach);
  for (const bool x : {false, true})
    for (const bool y : {false, true})
      for (const bool z : {false, true}) {
        if ((x && low[0] == high[0]) || (y && low[1] == high[1]) || (z && low[2] == high[2])) continue;
        const auto found = cubes_.find({(x ? high : low)[0], (y ? high : low)[1], (z ? high : low)[2]});
        if (found == cubes_.end()) continue;
        for (const Node& node : found->second) compare(node, place, nearest);
      }
}

/// The cube that holds the place moved by `shift` tolerances along each axis.
Places::Cube Places::cubeAt(const Vector3& place, long double shift) const {
  const auto along = [&](double coordinate) {
    return std::floor((static_cast<long double>(coordinate) / tolerance_ + shift) / edge);
  };
  return {along(place.x), along(place.y), along(place.z)};
}

std::size_t Places::Hash::operator()(const Cube& cube) const {
  std::size_t hash = 0;
  for (const long double number : cube) {
    int exponent = 0;  // apart, as it may be too large for a double
    const auto digits = static_cast<double>(std::frexp(number, &exponent));
    for (const std::uint64_t bits :
         {std::bit_cast<std::uint64_t>(digits + 0.0), static_cast<std::uint64_t>(exponent)}) {
      hash = (hash ^ bits) * 0x9E3779B97F4A7C15u;
      hash ^= hash >> 32;
    }
  }
  return hash;
}

}  // namespace gavrel
