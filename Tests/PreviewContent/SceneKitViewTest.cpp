#include "PreviewContent/SceneKitView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <numbers>

#include "PreviewContent/Coordinator.h"
#include "Scene/Transform.h"
#include "Tests/Near.h"
#include "Tests/Structures.h"

using namespace gavrel;

namespace {

constexpr Color blue{0, 0, 1, 1}, cyan{0, 1, 1, 1}, yellow{1, 1, 0, 1}, orange{1, 0.5, 0, 1}, red{1, 0, 0, 1};

/// A view of a project whose bindings are variables.
struct View {
  std::shared_ptr<Project> project = std::make_shared<Project>();
  std::optional<std::int64_t> node, element;
  double magnification = 1;
  AppMode mode = AppMode::normal;
  std::vector<std::int64_t> collected;
  bool strain = false;
  SceneKitView view{project,
                    SceneKitView::SCNOptions::allowsCameraControl,
                    Binding<std::optional<std::int64_t>>::to(node),
                    Binding<std::optional<std::int64_t>>::to(element),
                    Binding<double>::to(magnification),
                    Binding<AppMode>::to(mode),
                    Binding<std::vector<std::int64_t>>::to(collected),
                    Binding<bool>::to(strain)};
  Scene scene;

  const std::vector<SceneNode>& update() {
    view.updateScene(scene);
    return scene.rootNode.children;
  }

  const SceneNode& named(const std::string& name) {
    const auto& nodes = update();
    const auto found = std::ranges::find(nodes, name, &SceneNode::name);
    return found == nodes.end() ? throw std::out_of_range(name) : *found;
  }

  std::vector<std::string> names() {
    std::vector<std::string> all;
    for (const SceneNode& child : update()) all.push_back(child.name.value_or(""));
    return all;
  }
};

TEST(SceneKitView, DrawsInAFixedOrderUnderFixedNames) {
  View v;
  EXPECT_EQ(v.update().size(), 3U) << "camera and two lights";
  v.project->addNode({0, 0, 0});
  v.project->addNode({2, 0, 0});
  addBar(*v.project, 0, 1, 1);
  addBeam(*v.project, 1, 0, 1, false);
  v.project->trussElements.edit()[0].id = 12;
  v.project->setLoadAndRestraint(0, {0, -5, 0}, true, false, true);
  // Every look-up reads three entries a node, so what stands in node 0's entries 3 to 5 belongs to node 1.
  v.project->F_I.edit()[4] = 10;
  v.project->D_I.edit()[4] = true;
  EXPECT_THAT(v.names(), testing::ElementsAre("", "", "", "0", "1", "element_12", "element_0", "load_node_0",
                                              "load_node_1", "rest_x_node_0", "rest_z_node_0", "rest_y_node_1"));
  using enum Source::Kind;
  const std::optional<Source> sources[] = {
      {},          {},          {},          {{node, 0}},    {{node, 1}},    {{bar, 12}},
      {{beam, 0}}, {{load, 0}}, {{load, 1}}, {{support, 0}}, {{support, 0}}, {{support, 1}}};
  EXPECT_TRUE(std::ranges::equal(v.update(), sources, {}, &SceneNode::source));
  testing::internal::CaptureStdout();
  const auto& nodes = v.update();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_TRUE(std::holds_alternative<Camera>(nodes[0].content));
  EXPECT_EQ(nodes[0].position, (Vector3{0, 5, 10}));
  EXPECT_TRUE(std::holds_alternative<AmbientLight>(nodes[1].content));
  EXPECT_EQ(nodes[1].color, white(1.0 / 3));
  EXPECT_TRUE(std::holds_alternative<DirectionalLight>(nodes[2].content));
  expectNear(computeTransform(nodes[2]).direction({0, 0, -1}), {0, -std::sqrt(0.5), -std::sqrt(0.5)});
  EXPECT_EQ(std::get<Sphere>(nodes[3].content).radius, 0.1);
  EXPECT_EQ(std::get<Tube>(nodes[5].content).radius, 0.05);
  EXPECT_EQ(std::get<Tube>(nodes[6].content).radius, 0.1);
  EXPECT_EQ(nodes[5].color, yellow);
  EXPECT_EQ(nodes[6].color, orange);

  auto coordinator = v.view.makeCoordinator();
  v.view.makeNSView(*coordinator);
  EXPECT_EQ(coordinator->scene.background, white(0.5));
  EXPECT_EQ(coordinator->scene.rootNode.children.at(0).position, (Vector3{0, 5, 15}));
}

TEST(SceneKitView, MagnificationIsTheDrawnLengthOfTheLargestDisplacement) {
  View v;
  for (const double x : {0.0, 1.0, 2.0}) v.project->addNode({x, 0, 0});
  v.magnification = 7;
  EXPECT_EQ(v.named("1").position, (Vector3{1, 0, 0})) << "nothing has moved yet";
  v.project->U_I.edit()[4] = 0.002;
  v.project->U_I.edit()[6] = -0.001;
  expectNear(v.named("1").position, {1, 7, 0}, 1e-12);
  expectNear(v.named("2").position, {2 - 3.5, 0, 0}, 1e-12);
  v.project->U_I.edit()[11] = 1e9;  // beyond three entries a node: drawn nowhere
  expectNear(v.named("1").position, {1, 7, 0}, 1e-12);
  v.magnification = 0;
  EXPECT_EQ(v.named("1").position, (Vector3{1, 0, 0}));
}

TEST(SceneKitView, ColoursCollectedNodesOnlyWhileAdding) {
  View v;
  for (const double x : {0.0, 1.0, 2.0}) v.project->addNode({x, 0, 0});
  v.collected = {2, 0};
  for (const AppMode mode : {AppMode::normal, AppMode::addingTruss, AppMode::addingBeam}) {
    v.mode = mode;
    const Color collected = mode == AppMode::normal ? blue : cyan;
    EXPECT_EQ(v.named("0").color, collected);
    EXPECT_EQ(v.named("1").color, blue);
    EXPECT_EQ(v.named("2").color, collected);
  }
}

TEST(SceneKitView, LeavesOutWhatHasNoPlace) {
  View v;
  v.project->addNode({0, 0, 0});
  v.project->addNode({1, 0, 0});
  addBar(*v.project, 0, 1, 1);
  addBeam(*v.project, 0, 1, 1, false);
  v.project->F_I.edit() = {1, 0, 0, 0, 1, 0};
  v.project->D_I.edit() = {true, false, false, false, true, true};
  v.magnification = 2;
  v.project->U_I.edit() = {0.5, 0, 0, 0, 0, 1e9};
  v.project->U_I.edit().resize(5);  // the displacement of node 1 ends before
  testing::internal::CaptureStdout();
  EXPECT_THAT(v.names(), testing::ElementsAre("", "", "", "0", "load_node_0", "rest_x_node_0"));
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Warning: Could not find coordinates or displacement for nodes of truss element 0.\n");
  expectNear(v.scene.rootNode.children[3].position, {2, 0, 0}, 1e-12);
  v.project->U_I.edit().assign(12, 0.0);
  v.project->F_I.edit().resize(5);
  v.project->D_I.edit() = {false, true, false, true, true};
  EXPECT_THAT(v.names(),
              testing::ElementsAre("", "", "", "0", "1", "element_0", "element_0", "load_node_0", "rest_y_node_0"));
}

TEST(SceneKitView, TubesRunBetweenTheirEnds) {
  const Vector3 ends[][2] = {{{0, 0, 0}, {3, 4, 12}}, {{1, 2, 3}, {1, 5, 3}},    {{1, 2, 3}, {1, -5, 3}},
                             {{1, 1, 1}, {-2, 1, 1}}, {{0, 0, 0}, {1e-5, 1, 0}}, {{5, 5, 5}, {4, 3, 9}}};
  for (const auto& [a, b] : ends) {
    const SceneNode tube = SceneKitView::createCylinderNode(a, b, 0.05);
    const double height = std::get<Tube>(tube.content).height;
    EXPECT_EQ(height, double(float(length(b - a)))) << "single precision";
    const Transform world = computeTransform(tube);
    // Either end may come first: the tube looks the same. Rounding L leaves an angle of up to 1e-3 near the vertical.
    const Vector3 top = world.point({0, height / 2, 0});
    expectNear(length(top - b) < length(top - a) ? top : world.point({0, -height / 2, 0}), b, 2e-3);
  }
  const SceneNode none = SceneKitView::createCylinderNode({1, 1, 1}, {1, 1, 1}, 0.05);
  EXPECT_EQ(std::get<Tube>(none.content).height, 0);
  EXPECT_TRUE(std::isfinite(none.rotation.angle));
}

TEST(SceneKitView, ArrowsPointAlongTheirLoads) {
  View v;
  for (const double x : {0.0, 3.0, 6.0, 9.0}) v.project->addNode({x, 0, 0});
  v.project->F_I.edit()[0] = 10;
  v.project->F_I.edit()[4] = -5;
  v.project->F_I.edit()[8] = 2.5;
  const struct {
    const char* name;
    Vector3 from, tip;
  } arrows[] = {{"load_node_0", {0, 0, 0}, {1.15, 0, 0}},
                {"load_node_1", {3, 0, 0}, {3, -0.65, 0}},
                {"load_node_2", {6, 0, 0}, {6, 0, 0.4}}};
  for (const auto& [name, from, tip] : arrows) {
    const SceneNode arrow = v.named(name);
    ASSERT_EQ(arrow.children.size(), 2U);
    const SceneNode& head = arrow.children[1];
    EXPECT_FALSE(arrow.children[0].name || head.name || arrow.children[0].source || head.source);
    EXPECT_EQ(head.color, red);
    expectNear(computeTransform(head).point({0, std::get<Cone>(head.content).height / 2, 0}), tip);
    const SceneNode& shaft = arrow.children[0];
    EXPECT_EQ(std::get<Tube>(shaft.content).radius, 0.03);
    // The shaft reaches from the node to the base of the head, 0.3 before its tip.
    const double shaftLength = length(tip - from) - 0.3;
    EXPECT_NEAR(std::get<Tube>(shaft.content).height, shaftLength, 1e-6);
    const double half = shaftLength / 2 / length(tip - from);
    expectNear(shaft.position, from + (tip - from) * half);
  }
  EXPECT_THROW(v.named("load_node_3"), std::out_of_range);

  const SceneNode slanted = SceneKitView::createArrowNode({1, 1, 1}, {3, -2, 7}, 0.03, 0.1, 0.5, red);  // L = 7
  const Transform shaft = computeTransform(slanted.children[0]), head = computeTransform(slanted.children[1]);
  expectNear(head.translation, {3, -2, 7});
  expectNear(head.direction({0, 7, 0}), {2, -3, 6}, 1e-4);
  expectNear(shaft.direction({0, 7, 0}), {2, -3, 6}, 1e-4);
  EXPECT_NEAR(std::get<Tube>(slanted.children[0].content).height, 6.75, 1e-5);
  expectNear(shaft.translation, {1 + 3.375 * 2 / 7, 1 - 3.375 * 3 / 7, 1 + 3.375 * 6 / 7}, 1e-5);
  const SceneNode stub = SceneKitView::createArrowNode({0, 0, 0}, {0.1, 0, 0}, 0.03, 0.1, 0.5, red);
  EXPECT_EQ(std::get<Tube>(stub.children[0].content).height, 0) << "shorter than half of its head";
}

TEST(SceneKitView, RestraintsAreConesBeforeTheNode) {
  View v;
  const Vector3 place{1, 2, 3};
  v.project->addNode(place);
  v.project->setLoadAndRestraint(0, {}, true, true, true);
  const std::map<std::string, Vector3> axes{
      {"rest_x_node_0", {1, 0, 0}}, {"rest_y_node_0", {0, 1, 0}}, {"rest_z_node_0", {0, 0, 1}}};
  for (const auto& [name, e] : axes) {
    const SceneNode marker = v.named(name);
    EXPECT_EQ(std::get<Tube>(marker.children.at(0).content).radius, 0);
    const SceneNode& head = marker.children.at(1);
    const double h = std::get<Cone>(head.content).height;
    const double tolerance = 1e-4;  // the length of 0.2 is rounded, and the angle with it
    expectNear(computeTransform(head).point({0, h / 2, 0}), place - e * 0.15, tolerance);
    expectNear(computeTransform(head).point({0, -h / 2, 0}), place - e * 0.45, tolerance);
  }
}

TEST(SceneKitView, StrainColoursScaleEachSideByItsOwnExtreme) {
  const auto color = SceneKitView::colorForStrain;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const Color neutral = white(0.9), tension{1, 0.2, 0.2, 1}, compression{0, 0.4, 1, 1};
  EXPECT_EQ(color(-0.001, -0.001, 0.003), compression);
  EXPECT_EQ(color(0.003, -0.001, 0.003), tension);
  const Color halfway = color(0.0015, -0.001, 0.003);
  EXPECT_NEAR(halfway.red, 0.95, 1e-12);
  EXPECT_NEAR(halfway.green, 0.55, 1e-12);
  EXPECT_NEAR(halfway.blue, 0.55, 1e-12);
  EXPECT_EQ(color(5, 5, 5), neutral) << "all the same";
  EXPECT_EQ(color(1e-10, -1, 1), neutral);
  EXPECT_EQ(color(-1e-10, -1, 1), neutral);
  EXPECT_EQ(color(nan, -1, 1), neutral);
  EXPECT_EQ(color(-0.5, -2, 3).green, 0.9 * 0.75 + 0.4 * 0.25);
  EXPECT_EQ(color(2, -1, 1), tension) << "beyond the extreme";
  EXPECT_EQ(color(1, nan, nan), tension);

  // A bar that got longer has a negative strain, and takes the blue end.
  View v;
  for (const double x : {0.0, 1.0, 2.0}) v.project->addNode({x, 0, 0});
  addBar(*v.project, 0, 1, 1);
  EXPECT_EQ(SceneKitView::strainExtremes(*v.project).max, 0);
  addBar(*v.project, 1, 2, 1);
  v.project->trussElements.edit()[0].dUx = -0.001;
  v.project->trussElements.edit()[1].dUx = 0.003;
  EXPECT_EQ(v.named("element_0").color, yellow);
  EXPECT_EQ(SceneKitView::strainExtremes(*v.project).min, -0.001);
  EXPECT_EQ(SceneKitView::strainExtremes(*v.project).max, 0.003);
  v.strain = true;
  EXPECT_EQ(v.named("element_0").color, compression);
  EXPECT_EQ(v.named("element_1").color, tension);
  EXPECT_GT(SceneKitView::strainExtremes(Project()).min, SceneKitView::strainExtremes(Project()).max);
}

}  // namespace
