#pragma once

#include <qqml.h>
#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include "Diagnosis/StructureCheck.h"
#include "PreviewContent/ProjectViewModel.h"
#include "Workbench/FindingList.h"

namespace gavrel {

/// Solves the view model's project, always on a copy first: unless the check finds something serious, the copy's
/// solution is the result. Only a solve that the user has confirmed can end the process. The solve is synchronous:
/// between its steps the windows are repainted, but keys and clicks are dropped.
class Calculation : public QObject {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(gavrel::ProjectViewModel* projectViewModel READ projectViewModel WRITE setProjectViewModel REQUIRED)
  Q_PROPERTY(bool running READ running NOTIFY changed)
  Q_PROPERTY(bool converged READ converged NOTIFY changed)
  Q_PROPERTY(QString outcome READ outcome NOTIFY changed)
  Q_PROPERTY(QList<double> residuals READ residuals NOTIFY changed)
  Q_PROPERTY(double tolerance READ tolerance CONSTANT)
  Q_PROPERTY(bool checks MEMBER checks_ NOTIFY checksChanged)
  Q_PROPERTY(FindingList* findings READ findings CONSTANT)
  Q_PROPERTY(bool hasSeriousFindings READ hasSeriousFindings NOTIFY findingsChanged)
  Q_PROPERTY(bool checked READ checked NOTIFY findingsChanged)
  Q_PROPERTY(bool checkOutdated READ checkOutdated NOTIFY findingsChanged)
  Q_PROPERTY(QString reasonToEnd READ reasonToEnd NOTIFY reasonToEndChanged)

 public:
  using QObject::QObject;

  [[nodiscard]] ProjectViewModel* projectViewModel() const { return viewModel_; }
  void setProjectViewModel(ProjectViewModel* value);

  [[nodiscard]] bool running() const { return running_; }
  [[nodiscard]] bool converged() const;
  /// The progress or the outcome of the solve; empty before the first solve of a project and after it was changed.
  [[nodiscard]] QString outcome() const;

  /// The residual after each step of the solve that `outcome` tells of, relative to the load.
  [[nodiscard]] QList<double> residuals() const { return running_ || solved_ ? residuals_ : QList<double>(); }
  [[nodiscard]] double tolerance() const { return Project::convergenceTolerance; }

  /// The findings of the last check.
  [[nodiscard]] FindingList* findings() { return &findings_; }

  /// Whether a finding makes a result impossible or unreliable.
  [[nodiscard]] bool hasSeriousFindings() const;
  /// Whether the project was checked since it was opened or begun, and whether it was changed after that.
  [[nodiscard]] bool checked() const { return checked_; }
  [[nodiscard]] bool checkOutdated() const { return checked_ && checkOutdated_; }

  /// Why a solve that was asked for would end the process, while `answer` is waited for; otherwise empty.
  [[nodiscard]] QString reasonToEnd() const { return reasonToEnd_; }

  /// Checks the project and, unless something serious is found, publishes the solved project. With `checks` off the
  /// findings are ignored as in `runAnyway`.
  Q_INVOKABLE void run();

  /// Publishes the solved project in spite of the findings; sets `reasonToEnd` if there is no solution.
  Q_INVOKABLE void runAnyway();

  /// The user's answer to `reasonToEnd`: whether to solve although that ends the process.
  Q_INVOKABLE void answer(bool solvesAnyway);

  /// Highlights a finding's nodes and elements in the 3D area.
  Q_INVOKABLE void markFinding(int index);

  /// Makes a finding's trusses linear.
  Q_INVOKABLE void makeLinear(int index);

 signals:
  void changed();
  void checksChanged();
  void findingsChanged();
  void reasonToEndChanged();
  void stoppedByFindings();  ///< the check found something serious, so nothing was solved

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void calculate(bool heedsFindings, bool checksAgain);
  void solve();
  void begin();
  void end(bool solved);
  void announceFindings();
  void takeTrial();
  void setReasonToEnd(const QString& value);
  void show(double residual);
  void repaint();

  QPointer<ProjectViewModel> viewModel_;
  bool running_ = false;
  bool solved_ = false;
  bool checks_ = true;
  bool checked_ = false;
  bool checkOutdated_ = false;
  FindingList findings_;
  QString reasonToEnd_;
  StructureCheck trial_;     // has a solution only while the structure is unchanged
  QList<double> residuals_;  // one for each step
  QElapsedTimer sinceRepaint_;
};

}  // namespace gavrel
