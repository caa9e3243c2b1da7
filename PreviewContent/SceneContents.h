#pragma once

#include <qqml.h>
#include <QObject>
#include <QPointer>
#include <QVariant>
#include <memory>

#include "PreviewContent/Coordinator.h"
#include "PreviewContent/ProjectViewModel.h"
#include "PreviewContent/SceneKitView.h"
#include "Viewport/DrawnScene.h"

namespace gavrel {

/// The scene of a project, kept up to date: each announcement of a change schedules one
/// update, which takes place when control is back in the event loop.
class SceneContents : public gavrel::DrawnScene {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(gavrel::ProjectViewModel* projectViewModel READ projectViewModel WRITE setProjectViewModel REQUIRED)
  Q_PROPERTY(double displacementMagnification MEMBER magnification_ NOTIFY inputChanged)
  Q_PROPERTY(bool isStrainVisualizationActive MEMBER strainActive_ NOTIFY inputChanged)
  Q_PROPERTY(bool paused MEMBER paused_ NOTIFY inputChanged)
  Q_PROPERTY(QVariantMap strainLegend READ strainLegend NOTIFY updated)

 public:
  explicit SceneContents(QObject* parent = nullptr);
  ~SceneContents() override;

  [[nodiscard]] ProjectViewModel* projectViewModel() const { return viewModel_; }
  void setProjectViewModel(ProjectViewModel* value);

  [[nodiscard]] const Scene& scene() const override { return coordinator_->scene; }

  /// "shown": whether there are trusses to colour; "min", "max": the extreme strains; "colors": from that of
  /// the largest strain to that of the smallest, evenly spaced.
  [[nodiscard]] QVariantMap strainLegend() const;

  /// Passes a click along a ray on to the coordinator.
  void click(const Ray& ray) override;

  /// Whether the loads act along z rather than along y, so that z is likely to be upright.
  [[nodiscard]] Q_INVOKABLE bool loadsActAlongZ() const;

  /// Runs a scheduled update at once.
  Q_INVOKABLE void update();

 signals:
  void inputChanged();
  void nodeSelected(const QVariant& node);        ///< null for none
  void elementSelected(const QVariant& element);  ///< null for none
  void nodeClicked(qint64 node);
  void elementClicked(bool isBeam, qint64 element);

 private:
  void schedule();
  void observeProject();
  void showMarks();

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
};

}  // namespace gavrel
