#pragma once

#include <qqml.h>
#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantList>

#include "Diagnosis/StructureCheck.h"
#include "PreviewContent/ProjectViewModel.h"

/// Runs the solver on the view model's project, after a check that solves a copy: if nothing is found, the copy's
/// solution is the result. The solve is synchronous: between its steps the windows are repainted, but what the user
/// types and clicks meanwhile is dropped.
class Calculation : public QObject {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(ProjectViewModel* projectViewModel READ projectViewModel WRITE setProjectViewModel REQUIRED)
  Q_PROPERTY(bool running READ running NOTIFY changed)
  Q_PROPERTY(bool converged READ converged NOTIFY changed)
  Q_PROPERTY(QString outcome READ outcome NOTIFY changed)
  Q_PROPERTY(QList<double> residuals READ residuals NOTIFY changed)
  Q_PROPERTY(double tolerance READ tolerance CONSTANT)
  Q_PROPERTY(bool checks MEMBER checks_ NOTIFY checksChanged)
  Q_PROPERTY(QVariantList findings READ findings NOTIFY findingsChanged)

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

  /// What the last check has found: "consequence", "title", "text", and whether "canMakeLinear".
  [[nodiscard]] QVariantList findings() const;

  /// Checks, unless `checks` is off, and if nothing is found publishes the solved project.
  Q_INVOKABLE void run();

  /// Solves whatever the check has found. Ends the process where the solver does.
  Q_INVOKABLE void runAnyway();

  /// Points a finding's nodes and elements out in the 3D area.
  Q_INVOKABLE void markFinding(int index);

  /// Makes a finding's trusses linear.
  Q_INVOKABLE void makeLinear(int index);

 signals:
  void changed();
  void checksChanged();
  void findingsChanged();
  void found();  ///< a check has found something, and nothing was solved

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void begin();
  void end(bool solved);
  void takeTrial();
  void show(double residual);
  void repaint();

  QPointer<ProjectViewModel> viewModel_;
  bool running_ = false;
  bool solved_ = false;
  bool checks_ = true;
  StructureCheck trial_;     // of the structure as it is, and otherwise without a solution
  QList<double> residuals_;  // one a step
  QElapsedTimer sinceRepaint_;
};
