#include "Scene/Shapes.h"

#include <gtest/gtest.h>

#include <iterator>
#include <numbers>

#include "Tests/Near.h"

using namespace gavrel;

namespace {

TEST(Shapes, AreVisitedInOrderWithTheirPlaceInTheScene) {
  SceneNode root, ball, light, plain, turnedOnly, moved;
  ball.content = Sphere{1};
  ball.position = {1, 0, 0};
  light.content = AmbientLight{};
  light.position = {0, 5, 0};
  moved.content = Cone{};
  moved.position = {1, 0, 0};
  moved.rotation = {{0, 0, 1}, std::numbers::pi / 2};
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
