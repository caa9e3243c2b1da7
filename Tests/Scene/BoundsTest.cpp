#include "Scene/Bounds.h"

#include <gmock/gmock.h>

#include <limits>

using namespace gavrel;

namespace {

TEST(Bounds, ReachAroundEveryBallWithProperNumbers) {
  using Limits = std::numeric_limits<double>;
  Bounds box;
  EXPECT_TRUE(box.empty());
  EXPECT_EQ(box.centre(), Vector3{});
  EXPECT_EQ(box.radius(), 0);
  box.add({9, Limits::quiet_NaN(), 9}, 1);
  box.add({9, 9, -Limits::infinity()}, 1);
  box.add({9, 9, 9}, Limits::infinity());
  EXPECT_TRUE(box.empty());
  box.add({1, -2, 3}, 0.5);
  EXPECT_FALSE(box.empty());
  EXPECT_EQ(box.low, (Vector3{0.5, -2.5, 2.5}));
  EXPECT_EQ(box.high, (Vector3{1.5, -1.5, 3.5}));
  box.add({-4, 5, 6}, 2);
  box.add({0, 0, 5}, 0);  // inside
  EXPECT_EQ(box.low, (Vector3{-6, -2.5, 2.5}));
  EXPECT_EQ(box.high, (Vector3{1.5, 7, 8}));
  EXPECT_EQ(box.centre(), (Vector3{-2.25, 2.25, 5.25}));
  EXPECT_DOUBLE_EQ(box.radius(), std::sqrt(7.5 * 7.5 + 9.5 * 9.5 + 5.5 * 5.5) / 2);
  EXPECT_THAT(box.corners(),
              testing::UnorderedElementsAre(Vector3{-6, -2.5, 2.5}, Vector3{1.5, -2.5, 2.5}, Vector3{-6, 7, 2.5},
                                            Vector3{1.5, 7, 2.5}, Vector3{-6, -2.5, 8}, Vector3{1.5, -2.5, 8},
                                            Vector3{-6, 7, 8}, Vector3{1.5, 7, 8}));
}

}  // namespace
