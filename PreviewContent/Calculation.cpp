#include "PreviewContent/Calculation.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <array>

namespace {

// Milliseconds. A repaint waits for the display; fast steps are not held up by one each.
constexpr int repaintTime = 20;
constexpr int longestSilence = 100;

}  // namespace

void Calculation::setProjectViewModel(ProjectViewModel* value) {
  viewModel_ = value;
  // A result that no longer belongs to what is drawn is not boasted of.
  connect(value, &ProjectViewModel::projectChanged, this, [this] {
    if (running_ || !solved_) return;
    solved_ = false;
    emit changed();
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

void Calculation::run() {
  if (running_) return;
  emit viewModel_->endangered();
  running_ = true;
  qApp->installEventFilter(this);
  residuals_.clear();
  emit changed();
  repaint();
  const auto project = *viewModel_->project;
  project->Solve([this](int, double residual) { show(residual); });
  repaint();  // drops what was typed during the last step
  qApp->removeEventFilter(this);
  solved_ = true;
  viewModel_->setProject(project);
  running_ = false;
  emit changed();
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
