#include "Scene/Transform.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iterator>
#include <numbers>

#include "Scene/Shapes.h"

using namespace gavrel;

namespace {

constexpr double pi = std::numbers::pi;

void expectNear(const Vector3& actual, const Vector3& expected, double tolerance = 1e-12) {
  EXPECT_NEAR(actual.x, expected.x, tolerance);
  EXPECT_NEAR(actual.y, expected.y, tolerance);
  EXPECT_NEAR(actual.z, expected.z, tolerance);
}

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

TEST(SceneNode, LooksAtAnyTargetWithItsYAxisUpright) {
  const Vector3 eye{1, -2, 3};
  const Vector3 sights[] = {{0, 0, -1},  {0, 0, 1},    {-3, 0, 0},           {0, 5, 0}, {0, -5, 0}, {1, 2, 3},
                            {-4, -7, 2}, {1e-9, 1, 0}, {1e100, -1e100, 1e99}};
  for (const Vector3& sight : sights) {
    SCOPED_TRACE(testing::Message() << sight.x << ' ' << sight.y << ' ' << sight.z);
    SceneNode node;
    node.position = eye;
    node.lookAt(eye + sight);
    EXPECT_EQ(node.position, eye);
    const double size = length(sight);
    const auto [right, up, back] = computeTransform(node).columns;
    expectNear(back, {-sight.x / size, -sight.y / size, -sight.z / size}, 1e-7);
    EXPECT_NEAR(right.y, 0, 1e-12) << "not rolled";
    EXPECT_GT(up.y, -1e-12) << "not on its head";
  }
  SceneNode node = turned({1, 2, 3}, 0.5);
  node.lookAt({});
  EXPECT_EQ(node.rotation.angle, 0.5) << "its own position says nothing";
}

TEST(Shapes, AreVisitedInOrderWithTheirPlaceInTheScene) {
  SceneNode root, ball, light, plain, turnedOnly, moved;
  ball.content = Sphere{1};
  ball.position = {1, 0, 0};
  light.content = AmbientLight{};
  light.position = {0, 5, 0};
  moved.content = Cone{};
  moved.position = {1, 0, 0};
  moved.rotation = {{0, 0, 1}, pi / 2};
  turnedOnly.rotation = moved.rotation;
  turnedOnly.children = {ball};
  plain.children = {ball};
  moved.children = {plain, light};
  SceneNode centred;
  centred.content = Tube{};
  root.children = {light, ball, plain, moved, turnedOnly, centred};
  root.position = {100, 0, 0};
  const auto& top = root.children;
  const struct {
    const SceneNode* node;
    Vector3 place;
  } expected[] = {{&top[1], {1, 0, 0}},
                  {&top[2].children[0], {1, 0, 0}},
                  {&top[3], {1, 0, 0}},
                  {&top[3].children[0].children[0], {1, 1, 0}},
                  {&top[4].children[0], {0, 1, 0}},
                  {&top[5], {0, 0, 0}}};
  std::size_t visited = 0;
  forEachShape(root, [&](const SceneNode& node, const Transform& world) {
    ASSERT_LT(visited, std::size(expected));
    EXPECT_EQ(&node, expected[visited].node) << visited;
    expectNear(world.translation, expected[visited++].place);
  });
  EXPECT_EQ(visited, std::size(expected));
}

}  // namespace
