#include "Viewport/FrameTimer.h"

#include <cmath>
#include <utility>

namespace gavrel {

namespace {

constexpr qint64 shortestShown = 200;  // milliseconds

}  // namespace

void FrameTimer::setWindow(QQuickWindow* value) {
  if (value == window_) return;
  disconnect(begin_);
  disconnect(end_);
  if (window_) window_->disconnect(this);
  window_ = value;
  if (window_) {
    clock_ = std::make_shared<Clock>();
    // These two run on the thread that draws.
    const auto begin = [clock = clock_] { clock->sinceBeginning.start(); };
    const auto end = [clock = clock_] {
      if (!clock->sinceBeginning.isValid()) return;
      clock->milliseconds = static_cast<double>(clock->sinceBeginning.nsecsElapsed()) / 1e6;
      clock->sinceBeginning.invalidate();
    };
    begin_ = connect(window_, &QQuickWindow::beforeSynchronizing, window_, begin, Qt::DirectConnection);
    end_ = connect(window_, &QQuickWindow::frameSwapped, window_, end, Qt::DirectConnection);
    connect(window_, &QQuickWindow::frameSwapped, this, &FrameTimer::renew);
  }
  emit windowChanged();
}

void FrameTimer::renew() {
  if (std::exchange(justRenewed_, false)) return;
  if (sinceRenewal_.isValid() && sinceRenewal_.elapsed() < shortestShown) return;
  const double tenths = std::round(10 * clock_->milliseconds) / 10;
  if (tenths == milliseconds_) return;
  milliseconds_ = tenths;
  justRenewed_ = true;
  sinceRenewal_.start();
  emit measured();
}

}  // namespace gavrel
