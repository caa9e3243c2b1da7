#include "PreviewContent/SceneKitView.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>

#include "Platform/Console.h"
#include "Platform/Fatal.h"
#include "PreviewContent/Coordinator.h"

namespace gavrel {

namespace {

constexpr double nodeRadius = 0.1;
constexpr double trussRadius = 0.05;
constexpr double beamRadius = 0.1;
constexpr double loadShaftRadius = 0.03;
constexpr double headRadius = 0.1;
constexpr double headLength = 0.3;
constexpr double markerStart = 0.5;  // before the node, along the restrained axis
constexpr double markerEnd = 0.3;

constexpr Color nodeColor{0, 0, 1, 1};
constexpr Color collectedNodeColor{0, 1, 1, 1};
constexpr Color trussColor{1, 1, 0, 1};
constexpr Color beamColor{1, 0.5, 0, 1};
constexpr Color loadColor{1, 0, 0, 1};
constexpr Color restraintColor{0.6, 0.4, 0.2, 1};
constexpr Color neutralColor = white(0.9);
constexpr Color tensionColor{1.0, 0.2, 0.2, 1};
constexpr Color compressionColor{0.0, 0.4, 1.0, 1};
constexpr Color ambientColor = white(1.0 / 3);
constexpr Color backgroundColor = white(0.5);

constexpr Vector3 lightPosition{0, 10, 10};

float singleLength(const Vector3& d) {
  return std::sqrt(static_cast<float>(dot(d, d)));
}

/// Turns the y axis into a direction of which `cosine` is the y component. Straight down is half a turn about x.
Rotation rotationFromUp(const Vector3& direction, double cosine) {
  const bool vertical = direction.x == 0 && direction.z == 0;
  const Vector3 axis = vertical ? Vector3{1, 0, 0} : Vector3{direction.z, 0, -direction.x};
  // Lengths in single precision let the cosine leave its range by a rounding error.
  return {axis, std::acos(std::clamp(cosine, -1.0, 1.0))};
}

/// The greatest length of the first three entries of every node in an array, read with a stride of three.
double largestVector(const std::vector<double>& array, std::int64_t nodes) {
  double largest = 0;
  for (std::size_t at = 0; at < 3 * static_cast<std::size_t>(nodes) && at + 2 < array.size(); at += 3)
    largest = std::max(largest, length({array[at], array[at + 1], array[at + 2]}));
  return largest;
}

void addCameraAndLights(SceneNode& root, const Vector3& cameraPosition) {
  SceneNode camera;
  camera.content = Camera{};
  camera.position = cameraPosition;
  SceneNode ambient;
  ambient.content = AmbientLight{};
  ambient.color = ambientColor;
  SceneNode directional;
  directional.content = DirectionalLight{};
  directional.color = white(1);
  directional.position = lightPosition;
  directional.lookAt({0, 0, 0});
  for (SceneNode* node : {&camera, &ambient, &directional}) root.children.push_back(std::move(*node));
}

/// One pass over a project: where its nodes are drawn, and the shapes for them.
class SceneBuilder {
 public:
  SceneBuilder(const SceneKitView& view, SceneNode& root) : view_(view), project_(*view.project), root_(root) {
    const double largest = largestVector(*project_.U_I, nodes_);
    scale_ = largest > 0 ? view.displacementMagnification.get() / largest : 0;
  }

  void addNodes() {
    const bool adding = view_.appMode.get() != AppMode::normal;
    auto collected = adding ? view_.selectedNodesForTruss.get() : std::vector<std::int64_t>{};
    std::ranges::sort(collected);
    for (std::int64_t i = 0; i < nodes_; ++i)
      addNode(i, std::ranges::binary_search(collected, i) ? collectedNodeColor : nodeColor);
  }

  void addNode(std::int64_t node, const Color& color) {
    const auto place = drawnPlace(node);
    if (!place) return;
    SceneNode ball;
    ball.content = Sphere{nodeRadius};
    ball.color = color;
    ball.position = *place;
    add(std::move(ball), {Source::Kind::node, node}, "");
  }

  void addTrusses() {
    const auto [min, max] = SceneKitView::strainExtremes(project_);
    const bool byStrain = view_.isStrainVisualizationActive.get();
    for (const TrussElement& truss : *project_.trussElements) {
      if (!addTruss(truss, byStrain ? SceneKitView::colorForStrain(truss.strain(), min, max) : trussColor)) {
        printLine("Warning: Could not find coordinates or displacement for nodes of truss element " +
                  std::to_string(truss.id) + ".");
      }
    }
  }

  void addBeams() {
    for (const BeamElement& beam : *project_.beamElements) addBeam(beam);
  }

  void addBeam(const BeamElement& beam) { addTube(beam, Source::Kind::beam, beamRadius, beamColor); }

  bool addTruss(const TrussElement& truss, const Color& color) {
    return addTube(truss, Source::Kind::bar, trussRadius, color);
  }

  void addLoads() {
    const double largest = largestVector(*project_.F_I, nodes_);
    const double scale = largest > 0 ? 1 / largest : 0;
    for (std::int64_t i = 0; i < nodes_; ++i) {
      const auto force = project_.getNodeForce(i);
      if (!force || !(length(*force) > 0)) continue;
      const auto place = drawnPlace(i);
      if (!place) continue;
      add(SceneKitView::createArrowNode(*place, *place + *force * scale, loadShaftRadius, headRadius, headLength,
                                        loadColor),
          {Source::Kind::load, i}, "load_node_");
    }
  }

  void addRestraints() {
    for (std::int64_t i = 0; i < nodes_; ++i) {
      const auto restraints = project_.getNodeRestraints(i);
      const auto place = drawnPlace(i);
      if (!restraints || !place) continue;
      if (restraints->x) addMarker(*place, {1, 0, 0}, "rest_x_node_", i);
      if (restraints->y) addMarker(*place, {0, 1, 0}, "rest_y_node_", i);
      if (restraints->z) addMarker(*place, {0, 0, 1}, "rest_z_node_", i);
    }
  }

 private:
  /// Coordinates plus scaled displacement, where both are known.
  [[nodiscard]] std::optional<Vector3> drawnPlace(std::int64_t node) const {
    const auto X = project_.getNodeCoordinates(node);
    const auto U = project_.getNodeDisplacement(node);
    if (!X || !U) return std::nullopt;
    return *X + *U * scale_;
  }

  template <class Element>
  bool addTube(const Element& element, Source::Kind kind, double radius, const Color& color) {
    const auto start = drawnPlace(element.startNodeId);
    const auto end = drawnPlace(element.endNodeId);
    if (!start || !end) return false;
    SceneNode tube = SceneKitView::createCylinderNode(*start, *end, radius);
    tube.color = color;
    add(std::move(tube), {kind, element.id}, "element_");
    return true;
  }

  void addMarker(const Vector3& place, const Vector3& axis, std::string_view prefix, std::int64_t node) {
    add(SceneKitView::createArrowNode(place - axis * markerStart, place - axis * markerEnd, 0, headRadius, headLength,
                                      restraintColor),
        {Source::Kind::support, node}, prefix);
  }

  void add(SceneNode node, const Source& source, std::string_view prefix) {
    node.name = std::string(prefix) + std::to_string(source.number);
    node.source = source;
    root_.children.push_back(std::move(node));
  }

  const SceneKitView& view_;
  const Project& project_;
  SceneNode& root_;
  std::int64_t nodes_ = project_.nodeCount();
  double scale_ = 0;  // of displacements
};

}  // namespace

void SceneKitView::makeNSView(Coordinator& coordinator) const {
  coordinator.scene.background = backgroundColor;
  addCameraAndLights(coordinator.scene.rootNode, {0, 5, 15});
}

void SceneKitView::updateNSView(Coordinator& coordinator) const {
  coordinator.currentProject = project;
  coordinator.currentDisplacementMagnification = displacementMagnification;
  coordinator.appModeBinding = appMode;
  coordinator.selectedNodesForTrussBinding = selectedNodesForTruss;
  coordinator.isStrainVisualizationActive = isStrainVisualizationActive;
  updateScene(coordinator.scene);
}

std::unique_ptr<SceneKitView::Coordinator> SceneKitView::makeCoordinator() const {
  return std::make_unique<Coordinator>(Scene{}, project, selectedNodeForSheet, selectedElementForSheet,
                                       displacementMagnification, appMode, selectedNodesForTruss,
                                       isStrainVisualizationActive);
}

void SceneKitView::updateScene(Scene& scene) const {
  scene.rootNode.children.clear();
  addCameraAndLights(scene.rootNode, {0, 5, 10});
  SceneBuilder builder(*this, scene.rootNode);
  builder.addNodes();
  builder.addTrusses();
  builder.addBeams();
  builder.addLoads();
  builder.addRestraints();
}

SceneNode SceneKitView::buildShapes(const std::vector<std::int64_t>& nodes, const std::vector<std::int64_t>& trusses,
                                    const std::vector<std::int64_t>& beams) const {
  SceneNode group;
  SceneBuilder builder(*this, group);
  for (const std::int64_t node : nodes) builder.addNode(node, nodeColor);
  for (const std::int64_t i : trusses) builder.addTruss(at(*project->trussElements, i, "trussElements"), trussColor);
  for (const std::int64_t i : beams) builder.addBeam(at(*project->beamElements, i, "beamElements"));
  return group;
}

SceneNode SceneKitView::createCylinderNode(const Vector3& from, const Vector3& to, double radius) {
  const Vector3 d = to - from;
  const float L = singleLength(d);
  SceneNode node;
  node.content = Tube{radius, L};
  node.position = (from + to) * 0.5;
  node.rotation = rotationFromUp(d, d.y / (L > 0.000001F ? L : 1.0F));
  return node;
}

SceneNode SceneKitView::createArrowNode(const Vector3& from, const Vector3& to, double shaftRadius,
                                        double arrowheadRadius, double arrowheadLength, const Color& color) {
  const Vector3 d = to - from;
  const float L = singleLength(d);
  const float shaftLength = std::max(L - static_cast<float>(arrowheadLength / 2), 0.0F);
  const Vector3 u{d.x / L, d.y / L, d.z / L};

  SceneNode shaft = createCylinderNode(from, from + u * shaftLength, shaftRadius);
  shaft.color = color;
  SceneNode head;
  head.content = Cone{arrowheadRadius, arrowheadLength};
  head.color = color;
  head.position = to;
  head.rotation = rotationFromUp(u, u.y);

  SceneNode group;
  group.children.push_back(std::move(shaft));
  group.children.push_back(std::move(head));
  return group;
}

SceneKitView::StrainExtremes SceneKitView::strainExtremes(const Project& project) {
  StrainExtremes extremes;
  for (const TrussElement& truss : *project.trussElements) {
    const double strain = truss.strain();
    if (strain >= extremes.max) extremes.max = strain;
    if (strain < extremes.min) extremes.min = strain;
  }
  return extremes;
}

Color SceneKitView::colorForStrain(double strain, double minStrain, double maxStrain) {
  constexpr double epsilon = 1e-9;
  if (std::abs(maxStrain - minStrain) < epsilon) return neutralColor;
  const auto blend = [](double fraction, const Color& end) {
    const double t = fraction < 1 ? std::max(fraction, 0.0) : 1.0;  // not a number counts as 1
    const auto mix = [t](double from, double to) { return from * (1 - t) + to * t; };
    return Color{mix(neutralColor.red, end.red), mix(neutralColor.green, end.green), mix(neutralColor.blue, end.blue),
                 1};
  };
  if (strain > epsilon) return blend(strain / std::max(maxStrain, epsilon), tensionColor);
  if (strain < -epsilon) return blend(strain / std::min(minStrain, -epsilon), compressionColor);
  return neutralColor;
}

}  // namespace gavrel
