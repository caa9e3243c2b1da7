#include "Scene/OrbitCamera.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

using namespace gavrel;

namespace {

constexpr double pi = std::numbers::pi;

OrbitCamera camera() {
  OrbitCamera c;
  c.width = 1200;
  c.height = 700;
  return c;
}

void expectSeenAt(const OrbitCamera& c, const Vector3& point, double x, double y) {
  const auto seen = c.project(point);
  ASSERT_TRUE(seen);
  EXPECT_NEAR(seen->x, x, 1e-6);
  EXPECT_NEAR(seen->y, y, 1e-6);
}

TEST(OrbitCamera, StartsLevelAndSeesAVerticalAngleOf60Degrees) {
  const OrbitCamera c = camera();
  expectSeenAt(c, {0, 5, 0}, 600, 350);
  expectSeenAt(c, {0, 5 + 10 * std::tan(pi / 6), 0}, 600, 0);
  EXPECT_FALSE(c.project({0, 5, 11}));
}

TEST(OrbitCamera, RaysLeadToWhatIsSeen) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> unit(-1, 1);
  for (int i = 0; i < 100; ++i) {
    OrbitCamera c = camera();
    c.zUp = i % 2 == 1;
    c.parallel = i % 3 == 1;
    c.yaw = pi * unit(random);
    c.pitch = pi / 2 * unit(random);
    const double x = 600 + 600 * unit(random), y = 350 + 350 * unit(random);
    const Ray ray = c.ray(x, y);
    EXPECT_NEAR(length(ray.direction), 1, 1e-12);
    expectSeenAt(c, ray.at(7), x, y);
  }
}

TEST(OrbitCamera, TurnsMovesAndZoomsAboutWhatIsHeld) {
  const Vector3 held{1, 4, -2};
  OrbitCamera c = camera();
  const auto before = *c.project(held);
  c.orbit(held, 0.4, 0.3);
  expectSeenAt(c, held, before.x, before.y);
  EXPECT_NEAR(c.depth(held), before.depth, 1e-9);
  c.orbit(held, 0, 9);
  EXPECT_EQ(c.pitch, -pi / 2) << "looking straight down is as far as it goes";
  c.orbit(held, 4, -99);
  EXPECT_EQ(c.pitch, pi / 2) << "or straight up";
  EXPECT_NEAR(c.yaw, 4.4 - 2 * pi, 1e-12);
  c = camera();
  c.pan(held, 30, -20);
  expectSeenAt(c, held, before.x + 30, before.y - 20);
  c = camera();
  c.zoom(held, 2, 0.1);
  expectSeenAt(c, held, before.x, before.y);
  EXPECT_NEAR(c.depth(held), before.depth / 2, 1e-9);
  c.zoom(held, 1e9, 0.1);
  EXPECT_NEAR(length(held - c.position), 0.1, 1e-9);
}

TEST(OrbitCamera, ParallelProjectionKeepsSizesAtAnyDepthAndWhatIsHeld) {
  const Vector3 held{1, 4, -2};
  OrbitCamera c = camera();
  c.yaw = 0.3;
  const auto before = *c.project(held);
  const double pixel = c.pixelLength(before.depth);
  c.setParallel(true, held);
  EXPECT_NEAR(c.pixelLength(7), pixel, 1e-12);
  const auto parallel = *c.project(held);
  c.zoom(held, 2, 0.1);
  expectSeenAt(c, held, parallel.x, parallel.y);
  expectSeenAt(c, held + c.axes().right * pixel, parallel.x + 2, parallel.y);
  expectSeenAt(c, held + c.axes().back * 3, parallel.x, parallel.y);
  c.pan({9, 9, 9}, 30, -20);
  expectSeenAt(c, held, parallel.x + 30, parallel.y - 20);
  Bounds box;
  box.add({0, 0, 500}, 800);
  c.retreatFrom(box);
  expectSeenAt(c, held, parallel.x + 30, parallel.y - 20);
  for (const Vector3& corner : box.corners()) {
    EXPECT_GT(c.depth(corner), c.clipPlanes(box).near);
    EXPECT_LT(c.depth(corner), c.clipPlanes(box).far);
  }
  c.zoom(held, 1e9, 0.1);
  EXPECT_EQ(c.span, 0.1);
  c.setParallel(false, held);
  EXPECT_NEAR(c.pixelLength(c.depth(held)), 0.1 / c.height, 1e-12);
}

TEST(OrbitCamera, FitsPointsOfAnySizeIntoPicturesOfAnyForm) {
  const std::vector<Vector3> unit{{0, 0, 0}, {4, 0, 1}, {4, 3, -2}, {-1, 2, 5}, {NAN, 0, 0}};
  for (const double scale : {1e-3, 1.0, 1e6}) {
    for (const bool zUp : {false, true}) {
      for (const double width : {200.0, 2400.0}) {
        for (const bool parallel : {false, true}) {
          std::vector<Vector3> points;
          for (const Vector3& p : unit) points.push_back({p.x * scale + 1e7, p.y * scale, p.z * scale});
          OrbitCamera c = camera();
          c.width = width;
          c.zUp = zUp;
          c.yaw = 0.6;
          c.pitch = -0.4;
          c.parallel = parallel;
          const bool wide = width > c.height;
          const OrbitCamera::Insets insets{wide ? 0.0 : 50, wide ? 100.0 : 0};
          c.fit(points, insets);
          // From the middle to a side is 1, in each of the four directions.
          double left = 0, right = 0, down = 0, up = 0;
          for (std::size_t i = 0; i + 1 < points.size(); ++i) {
            const auto seen = c.project(points[i]);
            ASSERT_TRUE(seen);
            const double x = 2 * (seen->x - insets.left) / (width - insets.left) - 1;
            const double y = 1 - 2 * seen->y / (c.height - insets.bottom);
            left = std::max(left, -x), right = std::max(right, x), down = std::max(down, -y), up = std::max(up, y);
          }
          if (scale < 1) {
            EXPECT_LT(std::max({left, right, down, up}), 0.1) << "not nearer than a single node";
            continue;
          }
          const auto [low, high] = wide ? std::pair(down, up) : std::pair(left, right);
          EXPECT_NEAR(low, 1 / 1.1, 1e-6);
          EXPECT_NEAR(high, 1 / 1.1, 1e-6);
          const auto [from, to] = wide ? std::pair(left, right) : std::pair(down, up);
          EXPECT_LT(std::max(from, to), 0.9);
          EXPECT_NEAR(from, to, 0.2) << "nearly in the middle";
        }
      }
    }
  }
  OrbitCamera c = camera();
  c.fit({});
  EXPECT_EQ(c.position, camera().position);
  c.fit({{3, 3, 3}});
  expectSeenAt(c, {3, 3, 3}, 600, 350);
  EXPECT_EQ(c.depth({3, 3, 3}), 2);
}

TEST(OrbitCamera, ClipPlanesHoldTheBoxAndNoMoreThanThat) {
  const OrbitCamera c = camera();  // 10 before the plane z = 0
  const auto planes = [&c](double low, double high) {
    Bounds box;
    box.add({0, 0, low}, 0);
    box.add({1, 7, high}, 0);
    return c.clipPlanes(box);
  };
  const auto [near, far] = planes(-20, 5);
  EXPECT_LT(near, 5);
  EXPECT_GT(near, 4.8);
  EXPECT_GT(far, 30);
  EXPECT_LT(far, 31);
  EXPECT_NEAR(planes(-20, 11).near, 30 * 1.01 * 1e-4, 1e-9) << "as near as the depth buffer allows";
  EXPECT_EQ(planes(20, 30).far, 1e-3) << "all of it is behind";
  EXPECT_EQ(c.clipPlanes({}).near, 0.1);
  EXPECT_EQ(c.clipPlanes({}).far, 1000);
}

TEST(OrbitCamera, KeepsTheChosenAxisUpright) {
  OrbitCamera c = camera();
  EXPECT_EQ(c.axes().up, (Vector3{0, 1, 0}));
  c.zUp = true;
  EXPECT_EQ(c.axes().up, (Vector3{0, 0, 1}));
  EXPECT_EQ(c.axes().right, (Vector3{1, 0, 0}));
  EXPECT_EQ(c.axes().back, (Vector3{0, -1, 0})) << "from the front one looks along y";
}

}  // namespace
