#include "Scene/Scene.h"

#include <gtest/gtest.h>

#include "Scene/Transform.h"
#include "Tests/Near.h"

using namespace gavrel;

namespace {

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
  SceneNode node;
  node.rotation = {{1, 2, 3}, 0.5};
  node.lookAt({});
  EXPECT_EQ(node.rotation.angle, 0.5) << "its own position says nothing";
}

}  // namespace
