#pragma once

#include <qqml.h>
#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include "PreviewContent/ProjectViewModel.h"

/// Runs the solver on the view model's project. The solve is synchronous: between its steps the windows are repainted,
/// but what the user types and clicks meanwhile is dropped.
class Calculation : public QObject {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(ProjectViewModel* projectViewModel READ projectViewModel WRITE setProjectViewModel REQUIRED)
  Q_PROPERTY(bool running READ running NOTIFY changed)
  Q_PROPERTY(bool converged READ converged NOTIFY changed)
  Q_PROPERTY(QString outcome READ outcome NOTIFY changed)
  Q_PROPERTY(QList<double> residuals READ residuals NOTIFY changed)
  Q_PROPERTY(double tolerance READ tolerance CONSTANT)

 public:
  using QObject::QObject;

  [[nodiscard]] ProjectViewModel* projectViewModel() const { return viewModel_; }
  void setProjectViewModel(ProjectViewModel* value);

  [[nodiscard]] bool running() const { return running_; }
  [[nodiscard]] bool converged() const;
  /// How far the solve is or how it went; empty before the first solve of a project and after it was changed.
  [[nodiscard]] QString outcome() const;

  /// The residual after each step of the solve that `outcome` tells of, relative to the load.
  [[nodiscard]] QList<double> residuals() const { return running_ || solved_ ? residuals_ : QList<double>(); }
  [[nodiscard]] double tolerance() const { return Project::convergenceTolerance; }

  /// Solves and publishes the project again. Ends the process where the solver does.
  Q_INVOKABLE void run();

 signals:
  void changed();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void show(double residual);
  void repaint();

  QPointer<ProjectViewModel> viewModel_;
  bool running_ = false;
  bool solved_ = false;
  QList<double> residuals_;  // one a step
  QElapsedTimer sinceRepaint_;
};
