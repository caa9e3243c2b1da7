#include "Scene/HitTest.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <variant>

#include "Scene/Shapes.h"

using namespace gavrel;

namespace {

using Limits = std::numeric_limits<double>;

SceneNode shape(std::variant<Sphere, Tube, Cone> content, const Vector3& position = {}) {
  SceneNode node;
  std::visit([&node](const auto& solid) { node.content = solid; }, content);
  node.position = position;
  return node;
}

Scene makeScene(std::vector<SceneNode> nodes) {
  Scene scene;
  scene.rootNode.children = std::move(nodes);
  return scene;
}

double distanceTo(const SceneNode& node, const Ray& ray) {
  const Scene scene = makeScene({node});
  const auto hits = hitTest(scene, ray);
  return hits.empty() ? -1 : hits.front().distance;
}

/// Whether a point of the shape's own axes is inside it, straight from what the shapes are.
bool holds(const SceneNode& node, const Vector3& p) {
  const double across = std::hypot(p.x, p.z);
  if (const auto* ball = std::get_if<Sphere>(&node.content)) return length(p) <= ball->radius;
  if (const auto* tube = std::get_if<Tube>(&node.content))
    return across <= tube->radius && std::abs(p.y) <= tube->height / 2;
  const auto& cone = std::get<Cone>(node.content);
  return std::abs(p.y) <= cone.height / 2 && across <= cone.bottomRadius * (0.5 - p.y / cone.height);
}

/// The least t at which the ray comes into the shape or, from inside, out of it, by steps and then by halving; -1 if
/// there is none.
double firstChange(const SceneNode& node, const Vector3& origin, const Vector3& direction, double end) {
  constexpr int steps = 20000;
  const auto changed = [&](double t) { return holds(node, origin + direction * t) != holds(node, origin); };
  for (int i = 1; i <= steps; ++i) {
    double high = end * i / steps;
    if (!changed(high)) continue;
    double low = end * (i - 1) / steps;
    for (int halving = 0; halving < 60; ++halving) (changed((low + high) / 2) ? high : low) = (low + high) / 2;
    return high;
  }
  return -1;
}

TEST(HitTest, MeetsShapesWhereTheyAreUnderAnyTransform) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> unit(-1, 1);
  const auto vector = [&](double size) {
    return Vector3{size * unit(random), size * unit(random), size * unit(random)};
  };
  int met = 0;
  for (int i = 0; i < 400; ++i) {
    SceneNode node = i % 3 == 0 ? shape(Sphere{1}) : i % 3 == 1 ? shape(Tube{0.7, 2.5}) : shape(Cone{1.2, 2});
    // The ray is chosen in the shape's own axes, and taken out of them by two transforms.
    const Vector3 o = vector(4);
    const Vector3 target = vector(1.2);
    const Vector3 d = i % 5 == 0 ? o - target : target - o;
    node.position = vector(1e3);
    node.rotation = {vector(1), 3 * unit(random)};
    node.scale = {0.3 + std::abs(unit(random)), -0.4 - std::abs(unit(random)), 2};
    SceneNode group, plain, inner;
    group.position = vector(10);
    group.rotation = {vector(1e-200), unit(random)};
    group.scale = {1, 3, 0.5};
    inner.position = vector(10);
    const Transform world = computeTransform(group) * computeTransform(inner) * computeTransform(node);
    inner.children = {node};
    plain.children = {inner};
    group.children = {plain};
    const Scene scene = makeScene({group});
    const Transform own = computeTransform(node);
    const auto hits = hitTest(scene, {world.point(o), world.direction(d)});
    const double alone = distanceTo(node, {own.point(o), own.direction(d)});

    const double t = firstChange(node, o, d, 20);
    ASSERT_EQ(hits.size(), t < 0 ? 0U : 1U) << i;
    ASSERT_EQ(alone < 0, t < 0) << i;
    if (t < 0) continue;
    ++met;
    EXPECT_EQ(hits[0].node, &scene.rootNode.children[0].children[0].children[0].children[0]);
    EXPECT_NEAR(hits[0].distance, t * length(world.direction(d)), 1e-9) << i;
    EXPECT_NEAR(alone, t * length(own.direction(d)), 1e-9) << i;
  }
  EXPECT_GT(met, 150);
}

TEST(HitTest, OrdersByDistanceAndKeepsItsDigitsFarAway) {
  const Scene scene =
      makeScene({shape(Sphere{1}, {0, 0, -9}), shape(Tube{1, 1}, {0, 0, -3}), shape(Cone{1, 1}, {0, 0, -6}),
                 shape(Sphere{1}, {5, 0, -6}), shape(Sphere{1}, {0, 0, -9})});
  const auto hits = hitTest(scene, {{0, 0, 0}, {0, 0, -1}});
  ASSERT_EQ(hits.size(), 4U);
  for (std::size_t i = 0; i < 4; ++i)
    EXPECT_EQ(hits[i].node - scene.rootNode.children.data(), (std::array{1, 2, 0, 4})[i]) << "ties: in scene order";

  const SceneNode ball = shape(Sphere{1});
  EXPECT_NEAR(distanceTo(ball, {{1 - 1e-9, 0, 5}, {0, 0, -1}}), 5 - std::sqrt(2e-9), 1e-6);
  EXPECT_EQ(distanceTo(ball, {{1 + 1e-9, 0, 5}, {0, 0, -1}}), -1);
  const SceneNode far = shape(Tube{0.05, 2}, {1e6, 1e6, -1e4});
  EXPECT_NEAR(distanceTo(far, {{1e6, 1e6, 0}, {0, 0, -1}}), 1e4 - 0.05, 1e-9);
  EXPECT_NEAR(distanceTo(far, {{1e6 + 0.0499, 1e6, 0}, {0, 0, -1}}), 1e4, 0.01);
  EXPECT_EQ(distanceTo(far, {{1e6 + 0.0501, 1e6, 0}, {0, 0, -1}}), -1);

  for (int i = 0; i < 20; ++i) {
    const Vector3 centre{1e6 * i, 7e6, -1e7 + 1e5 * i};
    EXPECT_NEAR(distanceTo(shape(Sphere{0.05}, centre), {{0, 0, 0}, centre}), length(centre) - 0.05, 1e-6);
  }
  SceneNode doubled, tiny = shape(Sphere{1});
  doubled.scale = {2, 2, 2};
  doubled.children = {shape(Sphere{1})};
  EXPECT_EQ(distanceTo(doubled, {{0, 0, 5}, {0, 0, -1}}), 3);
  tiny.scale = {1e-8, 1e-8, 1e-8};
  EXPECT_NEAR(distanceTo(tiny, {{0, 0, 5}, {0, 0, -1}}), 5 - 1e-8, 1e-12);
  const SceneNode endless = shape(Tube{0.05, 2e8});
  EXPECT_NEAR(distanceTo(endless, {{0.03, 9e7 - 60, -80}, {0, 0.6, 0.8}}), 99.95, 1e-6);
  EXPECT_EQ(distanceTo(endless, {{0.0501, 9e7 - 60, -80}, {0, 0.6, 0.8}}), -1);
}

TEST(HitTest, ThickensWhatIsFarAway) {
  Ray ray{{1, 0, 0}, {0, 0, -1}, 0.1};
  EXPECT_EQ(distanceTo(shape(Sphere{0.5}, {0, 0, -15}), ray), -1) << "1.5 times as thick is not enough";
  EXPECT_GT(distanceTo(shape(Sphere{0.5}, {0, 0, -25}), ray), 0);
  EXPECT_GT(distanceTo(shape(Tube{0.5, 100}, {0, 0, -25}), ray), 0);
  EXPECT_EQ(distanceTo(shape(Tube{0.5, 0.2}, {0, 3, -25}), ray), -1) << "thicker, but not longer";
  EXPECT_EQ(distanceTo(shape(Sphere{0}, {1, 0, -25}), ray), -1) << "nothing stays nothing";
  EXPECT_GT(distanceTo(shape(Cone{0.5, 1}, {0, 0.45, -25}), ray), 0);
  // What counts is the point of the axis that is nearest to the ray, here 76 away.
  const SceneNode upright = shape(Tube{0.5, 200}, {0, 0, -10});
  EXPECT_GT(distanceTo(upright, {{3.6, 0, 0}, {0, 75, -10}, 0.1}), 0);
  EXPECT_EQ(distanceTo(upright, {{4, 0, 0}, {0, 75, -10}, 0.1}), -1);
  SceneNode sideways = upright;
  sideways.rotation = {{0, 0, 1}, std::numbers::pi / 2};
  EXPECT_GT(distanceTo(sideways, {{0, 3.6, 0}, {75, 0, -10}, 0.1}), 0);
  EXPECT_EQ(distanceTo(sideways, {{0, 4, 0}, {75, 0, -10}, 0.1}), -1);
  SceneNode along = shape(Tube{0.5, 10}, {0, 0, -10});  // seen from its end: as thick as the far one
  along.rotation = {{1, 0, 0}, std::numbers::pi / 2};
  EXPECT_GT(distanceTo(along, {{0.7, 0, 0}, {0, 0, -1}, 0.1}), 0);
  EXPECT_EQ(distanceTo(along, {{1, 0, 0}, {0, 0, -1}, 0.1}), -1);
  ray.thickening = 0;
  EXPECT_EQ(distanceTo(shape(Sphere{0.5}, {0, 0, -25}), ray), -1);
}

TEST(HitTest, NeverMeetsWhatHasNoProperNumbers) {
  std::vector<SceneNode> nodes{shape(Tube{1, 0}),
                               shape(Cone{0, 1}),
                               shape(Cone{1, Limits::infinity()}),
                               shape(Tube{1, Limits::infinity()}),
                               shape(Sphere{Limits::quiet_NaN()}),
                               shape(Sphere{1}, {0, Limits::quiet_NaN(), 0}),
                               shape(Sphere{1})};
  nodes.back().scale = {1, 0, 1};
  nodes.push_back(shape(Tube{1, 1}));
  nodes.back().rotation = {{1, 0, 0}, Limits::quiet_NaN()};
  nodes.emplace_back().content = Camera{};
  SceneNode twice;
  twice.scale = {2, 2, 2};
  twice.children = {shape(Tube{0, 1}), shape(Sphere{0})};
  nodes.push_back(twice);
  for (int i = 1; i < 20; ++i) {  // flattened by a parent that is turned as well
    SceneNode flat, child = shape(Sphere{1});
    flat.scale = {1, 0, 1};
    flat.rotation = {{1, 2, 0.3 * i}, 1.1};
    child.rotation = {{3, 1, -2}, 0.7 * i};
    flat.children = {child};
    nodes.push_back(flat);
  }
  const Scene scene = makeScene(nodes);
  for (const double thickening : {0.0, 1.0}) EXPECT_TRUE(hitTest(scene, {{0, 0, 5}, {0, 0, -1}, thickening}).empty());
  const Scene ball = makeScene({shape(Sphere{1})});
  for (const Vector3& direction : {Vector3{}, {Limits::quiet_NaN(), 0, 1}, {Limits::infinity(), 0, 0}})
    EXPECT_TRUE(hitTest(ball, {{0, 0, 5}, direction}).empty());
}

}  // namespace
