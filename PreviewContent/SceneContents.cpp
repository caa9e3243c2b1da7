#include "PreviewContent/SceneContents.h"

#include <cmath>
#include <optional>
#include <utility>

namespace gavrel {

namespace {

constexpr int legendColors = 17;

QVariant toVariant(std::optional<std::int64_t> number) {
  return number ? QVariant::fromValue<qint64>(*number) : QVariant::fromValue(nullptr);
}

}  // namespace

SceneContents::SceneContents(QObject* parent) : DrawnScene(parent) {
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
  // Changes during a pause are drawn when it ends.
  if (!viewModel_ || paused_) return;
  view_.project = *viewModel_->project;
  observeProject();
  view_.updateNSView(*coordinator_);
  fillTables();
  showMarks();
  emit updated();
}

void SceneContents::observeProject() {
  if (observedProject_ == view_.project) return;
  if (observedProject_) observedProject_->forget(projectSubscription_);
  observedProject_ = view_.project;
  projectSubscription_ = observedProject_->observe([this] { schedule(); });
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
  coordinator_->handleClick(hits);  // may replace the scene
  if (!source) return;
  if (source->kind == Source::Kind::node)
    emit nodeClicked(source->number);
  else
    emit elementClicked(source->kind == Source::Kind::beam, source->number);
}

void SceneContents::showMarks() {
  if (scheduled_ || !view_.project) return;  // the update draws the marks
  const auto& marks = viewModel_->marks();
  drawMarks(view_.buildShapes(marks.nodes, marks.trusses, marks.beams));
}

}  // namespace gavrel
