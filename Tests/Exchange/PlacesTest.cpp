#include "Exchange/Places.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

using namespace gavrel;

namespace {

constexpr std::int64_t many = 20000;

/// Random places in a cube with a corner at `corner`.
std::vector<Vector3> scattered(double corner, double edge) {
  std::mt19937_64 random(3);
  std::uniform_real_distribution<double> along(corner, corner + edge);
  std::vector<Vector3> places;
  for (std::int64_t i = 0; i < many; ++i) places.push_back({along(random), along(random), along(random)});
  return places;
}

std::int64_t comparisonsFor(const std::vector<Vector3>& there, const std::vector<Vector3>& added, double tolerance) {
  Places places(there, tolerance);
  for (const Vector3& place : added) EXPECT_GE(places.findOrAddNode(place), 0);
  return places.comparisons();
}

}  // namespace

TEST(Places, FindsTheNearestNodeWithinTheToleranceHoweverFarOut) {
  for (const double scale : {1.0, 1e-300, 1e150, 1e300}) {
    Places places({{0, 0, 0}, {3 * scale, 0, 0}, {3 * scale, 0, 0}}, 2 * scale);
    const auto findOrAddNode = [&](double x, double y) { return places.findOrAddNode({x * scale, y * scale, 0}); };
    EXPECT_EQ(findOrAddNode(1.25, 0), 0);
    EXPECT_EQ(findOrAddNode(2, 0), 1);
    EXPECT_EQ(findOrAddNode(0, 2), 0);
    EXPECT_EQ(findOrAddNode(0, 2.5), 3);
    EXPECT_EQ(findOrAddNode(-1, 3.75), 3);
    EXPECT_EQ(findOrAddNode(-100, -100), 4);
    EXPECT_EQ(findOrAddNode(-101, -101), 4);
  }
  Places fine({}, 1e-300);
  const double far = 1e300;
  EXPECT_EQ(fine.findOrAddNode({far, 0, 0}), 0);
  EXPECT_EQ(fine.findOrAddNode({std::nextafter(far, 2 * far), 0, 0}), 1);
  EXPECT_EQ(fine.findOrAddNode({-std::numeric_limits<double>::max(), 0, 0}), 2);
  EXPECT_EQ(fine.findOrAddNode({far, 0, 0}), 0);
}

TEST(Places, AgreesWithASearchOfAllNodes) {
  const auto there = scattered(0, 10);
  Places places(there, 0.2);
  auto nodes = there;
  std::mt19937_64 random(4);
  std::uniform_real_distribution<double> along(-1, 11);
  for (int i = 0; i < 300; ++i) {
    const Vector3 place{along(random), along(random), along(random)};
    std::size_t nearest = nodes.size();
    for (std::size_t k = 0; k < nodes.size(); ++k)
      if (distance(nodes[k], place) <=
          (nearest < nodes.size() ? std::nextafter(distance(nodes[nearest], place), 0) : 0.2))
        nearest = k;
    if (nearest == nodes.size()) nodes.push_back(place);
    ASSERT_EQ(places.findOrAddNode(place), static_cast<std::int64_t>(nearest));
  }
  EXPECT_GT(nodes.size(), there.size());
}

TEST(Places, ComparesFewNodesWhateverTheirPlaces) {
  constexpr std::int64_t most = 200 * many;
  const std::vector<Vector3> heap(many, Vector3{0.2, 0.3, 0.4});
  EXPECT_LT(comparisonsFor({}, scattered(1e15, 100), 1e-4), most);
  EXPECT_LT(comparisonsFor({}, scattered(1e300, 1e300), 1e-300), most);
  EXPECT_LT(comparisonsFor({}, scattered(0, 1), 1e9), most);
  EXPECT_LT(comparisonsFor(scattered(0, 1), scattered(1.2, 1), 1), most);
  EXPECT_LT(comparisonsFor(scattered(0, 1), scattered(0, 1), 1e9), most);
  EXPECT_LT(comparisonsFor(heap, scattered(0, 2), 0.5), most);
  EXPECT_LT(comparisonsFor(heap, heap, 1e-9), most);
}
