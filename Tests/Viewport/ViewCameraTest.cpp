#include "Viewport/ViewCamera.h"

#include <gtest/gtest.h>

#include <numbers>

#include "Tests/Near.h"
#include "Tests/Viewport/ViewedScene.h"

using namespace gavrel;

namespace {

constexpr double pi = std::numbers::pi;

Vector3 toVector3(const QVector3D& v) {
  return {v.x(), v.y(), v.z()};
}

/// A direction of the scene on the user's axes: to the right, up and towards him.
Vector3 seen(const ViewCamera& camera, const Vector3& v) {
  const auto [right, up, back] = camera.camera().axes();
  return {dot(v, right), dot(v, up), dot(v, back)};
}

TEST(ViewCamera, StandardDirectionsShowEverythingInTheSameLightWhicheverAxisIsUpright) {
  const double across = std::cos(pi / 9);
  const struct {
    ViewCamera::StandardView view;
    Vector3 from;  // with y upright
  } cases[] = {{ViewCamera::Front, {0, 0, 1}},
               {ViewCamera::Top, {0, 1, 0}},
               {ViewCamera::Right, {1, 0, 0}},
               {ViewCamera::Isometric, {std::sqrt(1.0 / 3), std::sqrt(1.0 / 3), std::sqrt(1.0 / 3)}},
               {ViewCamera::Overview, {across * std::sin(pi / 7), std::sin(pi / 9), across * std::cos(pi / 7)}}};
  for (const auto& [view, from] : cases) {
    SCOPED_TRACE(view);
    ViewedScene area;
    area.camera.show(view);
    expectNear(area.camera.camera().axes().back, from);
    const Vector3 light = seen(area.camera, toVector3(area.camera.lightDirection()));
    area.camera.setParallel(view % 2 == 0);
    area.camera.setZUp(true);
    EXPECT_TRUE(area.camera.zUp());
    expectNear(area.camera.camera().axes().back, {from.x, -from.z, from.y});
    expectNear(seen(area.camera, toVector3(area.camera.lightDirection())), light);
    if (view == ViewCamera::Front) expectNear(light, {0, std::sqrt(0.5), std::sqrt(0.5)});
    for (const Vector3& centre : area.contents.shapeCentres()) {
      const auto point = area.camera.camera().project(centre);
      ASSERT_TRUE(point);
      EXPECT_LT(std::abs(point->x - 450), 450);
      EXPECT_LT(std::abs(point->y - 300), 300);
    }
  }
}

TEST(ViewCamera, TellsTheRendererWhereItIs) {
  ViewedScene area;
  EXPECT_EQ(toVector3(area.camera.position()), (Vector3{-2, -2, 10})) << "from the middle of the nodes";
  EXPECT_EQ(area.camera.fieldOfView(), 60);
  EXPECT_NEAR(area.camera.thickening(), 25 * 2 * std::tan(pi / 6) / 600, 1e-12);
  area.camera.setZUp(true);
  area.camera.show(ViewCamera::Right);
  const auto turned = area.camera.rotation() * QVector3D(0, 0, 1);
  expectNear(toVector3(turned), {1, 0, 0});
  expectNear(toVector3(area.camera.rotation() * QVector3D(0, 1, 0)), {0, 0, 1});
  const double eye = area.camera.camera().position.x;
  const double nearest = eye - area.contents.bounds().high.x, farthest = eye - area.contents.bounds().low.x;
  EXPECT_LT(area.camera.clipNear(), nearest);
  EXPECT_GT(area.camera.clipNear(), nearest * 0.8);
  EXPECT_GT(area.camera.clipFar(), farthest);
  EXPECT_LT(area.camera.clipFar(), farthest * 1.1);
  const ViewCamera unset;
  EXPECT_EQ(unset.clipNear(), 0.1);
  EXPECT_EQ(unset.clipFar(), 1000);
  EXPECT_EQ(toVector3(unset.position()), (Vector3{0, 5, 10}));
}

TEST(ViewCamera, TurnsMovesAndZoomsAboutWhatIsUnderThePointer) {
  ViewedScene area;
  int changes = 0;
  QObject::connect(&area.camera, &ViewCamera::changed, [&changes] { ++changes; });
  const auto at = [&area](const Vector3& point) { return *area.camera.camera().project(point); };
  area.camera.grab(area.middleX, area.middleY);  // the front of node 0
  area.camera.orbit(60, 30);
  EXPECT_NEAR(area.camera.camera().yaw, -pi / 10, 1e-12);
  EXPECT_NEAR(area.camera.camera().pitch, -pi / 20, 1e-12);
  EXPECT_NEAR(at({0, 5, 0.1}).x, 450, 1e-6);
  EXPECT_NEAR(at({0, 5, 0.1}).y, 300, 1e-6);
  EXPECT_EQ(changes, 1);
  area.contents.update();
  EXPECT_EQ(changes, 2) << "other shapes need other planes to cut at";

  // No shape there: at the depth of the structure's centre.
  const Vector3 middle = area.contents.bounds().centre();
  const auto before = at(middle);
  area.camera.grab(5, 5);
  area.camera.orbit(-90, 10);
  EXPECT_NEAR(at(middle).x, before.x, 1e-6);
  EXPECT_NEAR(at(middle).y, before.y, 1e-6);
  area.camera.pan(40, -25);
  EXPECT_NEAR(at(middle).x, before.x + 40, 1e-6);
  EXPECT_NEAR(at(middle).y, before.y - 25, 1e-6);
  const double depth = at(middle).depth;
  area.camera.zoom(2, 5, 5);
  EXPECT_NEAR(at(middle).depth, depth / 2, 1e-6);

  ViewedScene fresh;
  fresh.camera.zoom(4, fresh.middleX, fresh.middleY);
  EXPECT_NEAR(fresh.camera.camera().position.z, 0.1 + 9.9 / 4, 1e-6);
  fresh.camera.zoom(1e9, fresh.middleX, fresh.middleY);
  EXPECT_NEAR(fresh.camera.camera().position.z, 0.1 + fresh.contents.bounds().radius() * 1e-4, 1e-9);
}

TEST(ViewCamera, KeepsTheWholeStructureInThePictureUntilItIsMoved) {
  ViewedScene area;
  const auto place = [&area] { return area.camera.camera().position; };
  const Vector3 start = place();
  area.camera.setWidth(400);
  EXPECT_EQ(place(), start) << "not yet fitted";
  area.camera.fit();
  const double far = place().z;
  area.camera.setWidth(200);
  EXPECT_NEAR(place().z, far * 2, far / 2);
  area.camera.setHeight(100);
  EXPECT_LT(place().z, far * 1.5);
  for (const auto move : {+[](ViewCamera& c) { c.pan(1, 0); }, +[](ViewCamera& c) { c.orbit(1, 0); },
                          +[](ViewCamera& c) { c.zoom(1.1, 5, 5); }}) {
    area.camera.fit();
    area.camera.grab(5, 5);
    move(area.camera);
    const Vector3 left = place();
    area.camera.setWidth(area.camera.width() * 2);
    EXPECT_EQ(place(), left);
  }
  area.camera.setZUp(true);
  const Vector3 fitted = place();
  area.camera.pan(9, 9);
  const Vector3 panned = place();
  area.camera.setZUp(true);
  EXPECT_EQ(place(), panned) << "no change";
  EXPECT_NE(panned, fitted);
  area.camera.setWidth(0);
  area.camera.setHeight(-5);
  EXPECT_EQ(area.camera.width() * area.camera.height(), 1);
}

TEST(ViewCamera, WhatIsFarAwayIsHitAsThickAsItIsDrawn) {
  ViewedScene area;
  area.camera.zoom(1e-3, area.middleX, area.middleY);
  EXPECT_TRUE(area.camera.hover(area.middleX - 2.3, area.middleY));
  EXPECT_FALSE(area.camera.hover(area.middleX - 2.7, area.middleY));
}

}  // namespace
