#include "Workbench/Calculation.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <array>
#include <new>
#include <utility>

#include "Platform/Console.h"
#include "Platform/Fatal.h"
#include "Platform/NumberText.h"

namespace gavrel {

namespace {

// Milliseconds. A repaint waits for the display, so that fast steps share one.
constexpr int repaintTime = 20;
constexpr int longestSilence = 100;

}  // namespace

void Calculation::setProjectViewModel(ProjectViewModel* value) {
  viewModel_ = value;
  // After any other change of the project its solve is no longer reported.
  connect(value, &ProjectViewModel::projectChanged, this, [this] {
    if (running_ || !solved_) return;
    solved_ = false;
    emit changed();
  });
  connect(value, &ProjectViewModel::structureEdited, this, [this] {
    trial_.solved.reset();
    if (!std::exchange(checkOutdated_, true)) emit findingsChanged();
  });
  connect(value, &ProjectViewModel::projectLoaded, this, [this] {
    trial_ = {};
    checked_ = false;
    setReasonToEnd({});
    announceFindings();
  });
}

bool Calculation::converged() const {
  return solved_ && residuals_.last() < Project::convergenceTolerance;
}

QString Calculation::outcome() const {
  if (running_ && residuals_.isEmpty()) return tr("Solving…");
  if (!running_ && !solved_) return {};
  const auto steps = residuals_.size();
  const QString residual = QString::asprintf("residual %.1e", residuals_.last());
  if (running_) return tr("Solving: step %1, %2").arg(steps).arg(residual);
  if (!converged()) return tr("Not converged after %1 steps, %2").arg(steps).arg(residual);
  return steps == 1 ? tr("Converged in 1 step, %1").arg(residual)
                    : tr("Converged in %1 steps, %2").arg(steps).arg(residual);
}

bool Calculation::hasSeriousFindings() const {
  return std::ranges::any_of(trial_.findings, isSerious);
}

void Calculation::run() {
  calculate(checks_, true);
}

void Calculation::runAnyway() {
  calculate(false, !checked_ || checkOutdated_);
}

void Calculation::calculate(bool heedsFindings, bool checksAgain) {
  if (running_) return;
  begin();
  if (checksAgain) {
    trial_ = StructureCheck::inspectAndSolve(**viewModel_->project, [this](int, double residual) { show(residual); });
    checked_ = true;
    checkOutdated_ = false;
  }
  const bool stops = heedsFindings && hasSeriousFindings();
  const bool ends = trial_.endsProgram();
  if (!stops && !ends) {
    if (trial_.solved)
      takeTrial();
    else  // without loads the check tries only one step
      solve();
  }
  end(!stops && !ends);
  if (checksAgain) announceFindings();
  if (stops) emit stoppedByFindings();
  if (ends && !stops) setReasonToEnd(QString::fromStdString(trial_.findings.front().text));
}

void Calculation::answer(bool solvesAnyway) {
  setReasonToEnd({});
  if (!solvesAnyway || running_) return;
  begin();
  solve();
  end(true);
}

void Calculation::solve() try {
  (*viewModel_->project)->Solve([this](int, double residual) { show(residual); });
} catch (const std::bad_alloc&) {
  fatal("not enough memory to solve");
}

void Calculation::setReasonToEnd(const QString& value) {
  if (std::exchange(reasonToEnd_, value) != value) emit reasonToEndChanged();
}

void Calculation::markFinding(int index) {
  const Finding& finding = findings_.finding(index);
  viewModel_->setMarks({finding.nodes, finding.trusses, finding.beams});
}

void Calculation::makeLinear(int index) {
  viewModel_->makeLinear(findings_.finding(index).trussesToMakeLinear);
}

void Calculation::begin() {
  emit viewModel_->changesAtRisk();
  viewModel_->clearMarks();
  running_ = true;
  qApp->installEventFilter(this);
  residuals_.clear();
  emit changed();
  repaint();
}

/// Publishes the trial's solution and prints the lines of a solve.
void Calculation::takeTrial() {
  (*viewModel_->project)->takeSolution(std::move(*trial_.solved));
  trial_.solved.reset();
  residuals_ = {trial_.norms.begin(), trial_.norms.end()};
  printLine("");
  for (const double norm : trial_.norms) printLine(numberText(norm));
}

void Calculation::end(bool solved) {
  repaint();  // drops the input that arrived during the last step
  qApp->removeEventFilter(this);
  solved_ = solved;
  if (solved) {
    viewModel_->setProject(*viewModel_->project);
    viewModel_->announceResults();
  }
  running_ = false;
  emit changed();
}

void Calculation::announceFindings() {
  findings_.setFindings(trial_.findings);
  emit findingsChanged();
}

void Calculation::show(double residual) {
  residuals_.append(residual);
  emit changed();
  if (sinceRepaint_.hasExpired(longestSilence)) repaint();
}

void Calculation::repaint() {
  QEventLoop loop;
  QTimer::singleShot(repaintTime, &loop, &QEventLoop::quit);
  loop.exec();
  sinceRepaint_.start();
}

bool Calculation::eventFilter(QObject* watched, QEvent* event) {
  constexpr std::array dropped{QEvent::MouseButtonPress,
                               QEvent::MouseButtonRelease,
                               QEvent::MouseButtonDblClick,
                               QEvent::MouseMove,
                               QEvent::Wheel,
                               QEvent::KeyPress,
                               QEvent::KeyRelease,
                               QEvent::Shortcut,
                               QEvent::ShortcutOverride,
                               QEvent::TouchBegin,
                               QEvent::TouchUpdate,
                               QEvent::TouchEnd,
                               QEvent::NativeGesture,
                               QEvent::HoverMove,
                               QEvent::Drop,
                               QEvent::Close};
  if (event->type() == QEvent::Close) event->ignore();
  return std::ranges::find(dropped, event->type()) != dropped.end() || QObject::eventFilter(watched, event);
}

}  // namespace gavrel
