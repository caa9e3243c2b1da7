#include "Scene/Transform.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "Tests/Near.h"

using namespace gavrel;

namespace {

constexpr double pi = std::numbers::pi;

SceneNode turned(const Vector3& axis, double angle) {
  SceneNode node;
  node.rotation = {axis, angle};
  return node;
}

TEST(Transform, TurnsRightHandedAboutAnAxisOfAnyLength) {
  for (const double size : {1e-200, 1e-9, 1.0, 1e200}) {
    SCOPED_TRACE(size);
    expectNear(computeTransform(turned({0, size, 0}, pi / 2)).direction({1, 2, 3}), {3, 2, -1});
    expectNear(computeTransform(turned({size, size, size}, 2 * pi / 3)).direction({1, 2, 3}), {3, 1, 2});
  }
  // By hand: a turn by the angle of the 3-4-5 triangle about (1, 2, 2) / 3.
  expectNear(computeTransform(turned({1, 2, 2}, std::atan2(4, 3))).direction({9, 0, 0}), {5.8, 5.6, -4});
  for (const SceneNode& still : {turned({0, 0, 0}, 1), turned({1, 2, 3}, 0)})
    EXPECT_EQ(computeTransform(still).point({1, 2, 3}), (Vector3{1, 2, 3}));
}

TEST(Transform, ScalesThenTurnsThenMovesInsideTheParent) {
  SceneNode node = turned({0, 0, 1}, pi / 2);
  node.scale = {2, -3, 4};
  node.position = {10, 20, 30};
  expectNear(computeTransform(node).point({1, 1, 1}), {13, 22, 34});
  expectNear(computeTransform(node).direction({1, 1, 1}), {3, 2, 4});
  SceneNode parent = turned({1, 0, 0}, pi / 2);
  parent.position = {1, 1, 1};
  expectNear((computeTransform(parent) * computeTransform(node)).point({1, 1, 1}), {14, -33, 23});
}

}  // namespace
