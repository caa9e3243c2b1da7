#include "Viewport/DrawnScene.h"

#include <variant>

#include "Scene/Shapes.h"

namespace gavrel {

namespace {

constexpr double highlightGrowth = 1.05;  // so that it covers the shape below it
constexpr double highlightWhite = 0.55;
constexpr double markGrowth = 1.6;
constexpr Color markColor{1, 0, 0.85, 1};

Color lighter(const Color& color) {
  const auto mix = [](double component) { return component + (1 - component) * highlightWhite; };
  return {mix(color.red), mix(color.green), mix(color.blue), 1};
}

/// Scale of a mesh of radius and height 1.
Vector3 computeStretch(const SceneNode& node) {
  if (const auto* ball = std::get_if<Sphere>(&node.content)) return {ball->radius, ball->radius, ball->radius};
  if (const auto* tube = std::get_if<Tube>(&node.content)) return {tube->radius, tube->height, tube->radius};
  const auto& cone = std::get<Cone>(node.content);
  return {cone.bottomRadius, cone.height, cone.bottomRadius};
}

}  // namespace

QColor DrawnScene::toQColor(const Color& color) {
  return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                          static_cast<float>(color.blue));
}

const SceneNode* DrawnScene::picked(const std::vector<HitTestResult>& hits) {
  return hits.empty() || !hits.front().node->source ? nullptr : hits.front().node;
}

void DrawnScene::fillTables() {
  const SceneNode& root = scene().rootNode;
  bounds_ = {};
  for (const SceneNode& node : root.children) {
    if (const auto* ball = std::get_if<Sphere>(&node.content)) bounds_.add(node.position, ball->radius);
  }
  origin_ = bounds_.centre();
  for (InstanceTable* table : {&balls_, &tubes_, &cones_}) table->clear();
  forEachShape(root, [this](const SceneNode& node, const Transform& world) {
    const Vector3 stretch = computeStretch(node);
    if (!(stretch.x > 0)) return;
    InstanceTable& table = std::holds_alternative<Sphere>(node.content) ? balls_
                           : std::holds_alternative<Tube>(node.content) ? tubes_
                                                                        : cones_;
    table.append(world, stretch, origin_, node.color);
    if (!std::holds_alternative<Sphere>(node.content))
      bounds_.add(world.translation, std::holds_alternative<Cone>(node.content) ? stretch.y : stretch.x);
  });
  for (InstanceTable* table : {&balls_, &tubes_, &cones_}) table->publish();
  showHighlight(nullptr);
}

std::vector<Vector3> DrawnScene::shapeCentres() const {
  std::vector<Vector3> centres;
  forEachShape(scene().rootNode,
               [&centres](const SceneNode&, const Transform& world) { centres.push_back(world.translation); });
  return centres;
}

QColor DrawnScene::background() const {
  return toQColor(scene().background);
}

bool DrawnScene::highlight(const Ray& ray) {
  const SceneNode* node = picked(hitTest(scene(), ray));
  showHighlight(node);
  return node != nullptr;
}

void DrawnScene::clearHighlight() {
  showHighlight(nullptr);
}

void DrawnScene::drawMarks(const SceneNode& shapes) {
  for (InstanceTable* table : {&markedBalls_, &markedTubes_}) table->clear();
  for (const SceneNode& node : shapes.children) append(markedBalls_, markedTubes_, node, markGrowth, markColor);
  for (InstanceTable* table : {&markedBalls_, &markedTubes_}) table->publish();
}

void DrawnScene::showHighlight(const SceneNode* node) {
  for (InstanceTable* table : {&highlightedBall_, &highlightedTube_}) table->clear();
  if (node != nullptr) append(highlightedBall_, highlightedTube_, *node, highlightGrowth, lighter(node->color));
  for (InstanceTable* table : {&highlightedBall_, &highlightedTube_}) table->publish();
}

/// Shapes of nodes and elements are children of the scene's root, not of a group.
void DrawnScene::append(InstanceTable& balls, InstanceTable& tubes, const SceneNode& node, double growth,
                        const Color& color) {
  const bool isBall = std::holds_alternative<Sphere>(node.content);
  Vector3 stretch = computeStretch(node);
  stretch.x *= growth;
  stretch.z *= growth;
  if (isBall) stretch.y *= growth;
  (isBall ? balls : tubes).append(computeTransform(node), stretch, origin_, color);
}

}  // namespace gavrel
