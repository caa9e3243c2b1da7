#pragma once

#include <qqml.h>
#include <QColor>
#include <QObject>
#include <QPointer>
#include <QVariant>
#include <memory>
#include <vector>

#include "PreviewContent/Coordinator.h"
#include "PreviewContent/InstanceTable.h"
#include "PreviewContent/ProjectViewModel.h"
#include "PreviewContent/SceneKitView.h"
#include "Scene/Bounds.h"

/// The scene of a project as tables for the renderer, kept up to date: each announcement of a change schedules one
/// update, which takes place when control is back in the event loop.
class SceneContents : public QObject {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(ProjectViewModel* projectViewModel READ projectViewModel WRITE setProjectViewModel REQUIRED)
  Q_PROPERTY(double displacementMagnification MEMBER magnification_ NOTIFY inputChanged)
  Q_PROPERTY(bool isStrainVisualizationActive MEMBER strainActive_ NOTIFY inputChanged)
  Q_PROPERTY(bool paused MEMBER paused_ NOTIFY inputChanged)
  Q_PROPERTY(InstanceTable* balls READ balls CONSTANT)
  Q_PROPERTY(InstanceTable* tubes READ tubes CONSTANT)
  Q_PROPERTY(InstanceTable* cones READ cones CONSTANT)
  Q_PROPERTY(InstanceTable* highlightedBall READ highlightedBall CONSTANT)
  Q_PROPERTY(InstanceTable* highlightedTube READ highlightedTube CONSTANT)
  Q_PROPERTY(InstanceTable* markedBalls READ markedBalls CONSTANT)
  Q_PROPERTY(InstanceTable* markedTubes READ markedTubes CONSTANT)
  Q_PROPERTY(QColor background READ background CONSTANT)
  Q_PROPERTY(QVariantMap strainLegend READ strainLegend NOTIFY updated)

 public:
  explicit SceneContents(QObject* parent = nullptr);
  ~SceneContents() override;

  [[nodiscard]] ProjectViewModel* projectViewModel() const { return viewModel_; }
  void setProjectViewModel(ProjectViewModel* value);

  [[nodiscard]] const Scene& scene() const { return coordinator_->scene; }
  /// Around all shapes.
  [[nodiscard]] const Bounds& bounds() const { return bounds_; }
  [[nodiscard]] std::vector<Vector3> shapeCentres() const;
  /// The point of the scene that the renderer draws at its own zero.
  [[nodiscard]] const Vector3& origin() const { return origin_; }

  [[nodiscard]] InstanceTable* balls() { return &balls_; }
  [[nodiscard]] InstanceTable* tubes() { return &tubes_; }
  [[nodiscard]] InstanceTable* cones() { return &cones_; }
  [[nodiscard]] InstanceTable* highlightedBall() { return &highlightedBall_; }
  [[nodiscard]] InstanceTable* highlightedTube() { return &highlightedTube_; }
  [[nodiscard]] InstanceTable* markedBalls() { return &markedBalls_; }
  [[nodiscard]] InstanceTable* markedTubes() { return &markedTubes_; }
  [[nodiscard]] QColor background() const;

  /// "shown": whether there are trusses to colour; "min", "max": the extreme strains; "colors": from that of the
  /// largest strain to that of the smallest, evenly spaced.
  [[nodiscard]] QVariantMap strainLegend() const;

  /// Passes a click along a ray on to the coordinator.
  void click(const Ray& ray);

  /// Draws what a click along the ray would pick in a lighter colour. True if there is something.
  bool highlight(const Ray& ray);
  Q_INVOKABLE void clearHighlight();

  /// Whether the loads act along z rather than along y, so that z is likely to be upright.
  [[nodiscard]] Q_INVOKABLE bool loadsActAlongZ() const;

  /// Does at once what is scheduled.
  Q_INVOKABLE void update();

 signals:
  void inputChanged();
  void updated();
  void nodeSelected(const QVariant& node);        ///< null for none
  void elementSelected(const QVariant& element);  ///< null for none
  void nodeClicked(qint64 node);
  void elementClicked(bool isBeam, qint64 element);

 private:
  void schedule();
  void observeProject();
  void fillTables();
  void showMarks();
  void showHighlight(const SceneNode* node);
  void append(InstanceTable& balls, InstanceTable& tubes, const SceneNode& node, double growth, const Color& color);

  QPointer<ProjectViewModel> viewModel_;
  std::shared_ptr<Project> observedProject_;
  Observable::Subscription projectSubscription_ = 0;
  Observable::Subscription viewModelSubscription_ = 0;
  double magnification_ = 1.0;
  bool strainActive_ = false;
  bool paused_ = false;
  bool scheduled_ = false;

  SceneKitView view_;
  std::unique_ptr<SceneKitView::Coordinator> coordinator_;
  Bounds bounds_;
  Vector3 origin_;
  InstanceTable balls_;
  InstanceTable tubes_;
  InstanceTable cones_;
  InstanceTable highlightedBall_;
  InstanceTable highlightedTube_;
  InstanceTable markedBalls_;
  InstanceTable markedTubes_;
};
