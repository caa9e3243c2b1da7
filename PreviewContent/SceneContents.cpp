#include "PreviewContent/SceneContents.h"

#include <cmath>
#include <optional>
#include <utility>
#include <variant>

#include "Scene/Shapes.h"

namespace {

constexpr double highlightGrowth = 1.05;  // so that it covers what it is drawn over
constexpr double highlightWhite = 0.55;
constexpr double markGrowth = 1.6;
constexpr Color markColor{1, 0, 0.85, 1};
constexpr int legendColors = 17;

QColor toQColor(const Color& color) {
  return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                          static_cast<float>(color.blue));
}

QVariant toVariant(std::optional<std::int64_t> number) {
  return number ? QVariant::fromValue<qint64>(*number) : QVariant::fromValue(nullptr);
}

Color lighter(const Color& color) {
  const auto mix = [](double component) { return component + (1 - component) * highlightWhite; };
  return {mix(color.red), mix(color.green), mix(color.blue), 1};
}

/// Scale of a mesh of radius and height 1.
Vector3 stretchOf(const SceneNode& node) {
  if (const auto* ball = std::get_if<Sphere>(&node.content)) return {ball->radius, ball->radius, ball->radius};
  if (const auto* tube = std::get_if<Tube>(&node.content)) return {tube->radius, tube->height, tube->radius};
  const auto& cone = std::get<Cone>(node.content);
  return {cone.bottomRadius, cone.height, cone.bottomRadius};
}

/// The nearest shape, if it shows a node or an element: parts of arrows have no source.
const SceneNode* picked(const std::vector<HitTestResult>& hits) {
  return hits.empty() || !hits.front().node->source ? nullptr : hits.front().node;
}

}  // namespace

SceneContents::SceneContents(QObject* parent) : QObject(parent) {
  view_.options = SceneKitView::SCNOptions::allowsCameraControl;
  view_.selectedNodeForSheet.set = [this](auto node) { emit nodeSelected(toVariant(node)); };
  view_.selectedElementForSheet.set = [this](auto element) { emit elementSelected(toVariant(element)); };
  view_.displacementMagnification = Binding<double>::to(magnification_);
  view_.isStrainVisualizationActive = Binding<bool>::to(strainActive_);
  view_.appMode.get = [this] { return *viewModel_->appMode; };
  view_.selectedNodesForTruss.get = [this] { return *viewModel_->selectedNodesForTruss; };
  view_.selectedNodesForTruss.set = [this](auto nodes) { viewModel_->setSelectedNodesForTruss(std::move(nodes)); };
  coordinator_ = view_.makeCoordinator();
  view_.makeNSView(*coordinator_);
  connect(this, &SceneContents::inputChanged, this, &SceneContents::schedule);
}

SceneContents::~SceneContents() {
  if (observedProject_) observedProject_->forget(projectSubscription_);
  if (viewModel_) viewModel_->objectWillChange.forget(viewModelSubscription_);
}

void SceneContents::setProjectViewModel(ProjectViewModel* value) {
  if (viewModel_) viewModel_->objectWillChange.forget(viewModelSubscription_);
  viewModel_ = value;
  viewModelSubscription_ = value->objectWillChange.observe([this] { schedule(); });
  connect(value, &ProjectViewModel::marksChanged, this, &SceneContents::showMarks);
  schedule();
}

void SceneContents::schedule() {
  if (scheduled_) return;
  scheduled_ = true;
  QMetaObject::invokeMethod(
      this,
      [this] {
        if (scheduled_) update();
      },
      Qt::QueuedConnection);
}

void SceneContents::update() {
  scheduled_ = false;
  // What happens during a pause is drawn when `paused` changes.
  if (!viewModel_ || paused_) return;
  view_.project = *viewModel_->project;
  observeProject();
  view_.updateNSView(*coordinator_);
  fillTables();
  emit updated();
}

void SceneContents::observeProject() {
  if (observedProject_ == view_.project) return;
  if (observedProject_) observedProject_->forget(projectSubscription_);
  observedProject_ = view_.project;
  projectSubscription_ = observedProject_->observe([this] { schedule(); });
}

void SceneContents::fillTables() {
  const SceneNode& root = coordinator_->scene.rootNode;
  bounds_ = {};
  for (const SceneNode& node : root.children) {
    if (const auto* ball = std::get_if<Sphere>(&node.content)) bounds_.add(node.position, ball->radius);
  }
  origin_ = bounds_.centre();
  for (InstanceTable* table : {&balls_, &tubes_, &cones_}) table->clear();
  forEachShape(root, [this](const SceneNode& node, const Transform& world) {
    const Vector3 stretch = stretchOf(node);
    if (!(stretch.x > 0)) return;
    InstanceTable& table = std::holds_alternative<Sphere>(node.content) ? balls_
                           : std::holds_alternative<Tube>(node.content) ? tubes_
                                                                        : cones_;
    table.append(world, stretch, origin_, node.color);
    if (!std::holds_alternative<Sphere>(node.content))
      bounds_.add(world.translation, std::holds_alternative<Cone>(node.content) ? stretch.y : stretch.x);
  });
  for (InstanceTable* table : {&balls_, &tubes_, &cones_}) table->publish();
  showMarks();
  showHighlight(nullptr);
}

std::vector<Vector3> SceneContents::shapeCentres() const {
  std::vector<Vector3> centres;
  forEachShape(scene().rootNode,
               [&centres](const SceneNode&, const Transform& world) { centres.push_back(world.translation); });
  return centres;
}

QColor SceneContents::background() const {
  return toQColor(coordinator_->scene.background);
}

QVariantMap SceneContents::strainLegend() const {
  if (!viewModel_ || (*viewModel_->project)->trussElements->empty()) return {{"shown", false}};
  const auto [min, max] = SceneKitView::strainExtremes(**viewModel_->project);
  QVariantList colors;
  for (int i = 0; i < legendColors; ++i) {
    const double strain = max + (min - max) * i / (legendColors - 1);
    colors.append(toQColor(SceneKitView::colorForStrain(strain, min, max)));
  }
  return {{"shown", min <= max}, {"min", min}, {"max", max}, {"colors", colors}};
}

bool SceneContents::loadsActAlongZ() const {
  const auto& loads = *(*viewModel_->project)->F_I;
  double y = 0;
  double z = 0;
  for (std::size_t dof = 0; dof + 2 < loads.size(); dof += dofsPerNode) {
    y += std::abs(loads[dof + 1]);
    z += std::abs(loads[dof + 2]);
  }
  return z > y;
}

void SceneContents::click(const Ray& ray) {
  const auto hits = hitTest(coordinator_->scene, ray);
  const SceneNode* node = picked(hits);
  const auto source = node == nullptr ? std::nullopt : node->source;
  if (!source) viewModel_->clearMarks();
  coordinator_->handleClick(hits);  // may lead to another scene
  if (!source) return;
  if (source->kind == Source::Kind::node)
    emit nodeClicked(source->number);
  else
    emit elementClicked(source->kind == Source::Kind::beam, source->number);
}

bool SceneContents::highlight(const Ray& ray) {
  const SceneNode* node = picked(hitTest(coordinator_->scene, ray));
  showHighlight(node);
  return node != nullptr;
}

void SceneContents::clearHighlight() {
  showHighlight(nullptr);
}

void SceneContents::showMarks() {
  if (scheduled_ || !view_.project) return;  // the update shows them
  for (InstanceTable* table : {&markedBalls_, &markedTubes_}) table->clear();
  const auto& marks = viewModel_->marks();
  const SceneNode shapes = view_.shapesOf(marks.nodes, marks.trusses, marks.beams);
  for (const SceneNode& node : shapes.children) append(markedBalls_, markedTubes_, node, markGrowth, markColor);
  for (InstanceTable* table : {&markedBalls_, &markedTubes_}) table->publish();
}

void SceneContents::showHighlight(const SceneNode* node) {
  for (InstanceTable* table : {&highlightedBall_, &highlightedTube_}) table->clear();
  if (node != nullptr) append(highlightedBall_, highlightedTube_, *node, highlightGrowth, lighter(node->color));
  for (InstanceTable* table : {&highlightedBall_, &highlightedTube_}) table->publish();
}

/// Shapes of nodes and elements stand in the scene itself, not in a group.
void SceneContents::append(InstanceTable& balls, InstanceTable& tubes, const SceneNode& node, double growth,
                           const Color& color) {
  const bool isBall = std::holds_alternative<Sphere>(node.content);
  Vector3 stretch = stretchOf(node);
  stretch.x *= growth;
  stretch.z *= growth;
  if (isBall) stretch.y *= growth;
  (isBall ? balls : tubes).append(transformOf(node), stretch, origin_, color);
}
