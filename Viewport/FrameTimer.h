#pragma once

#include <qqml.h>
#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QQuickWindow>
#include <atomic>
#include <memory>

namespace gavrel {

/// Measures how long a window takes for a frame: from the synchronization with its items until the picture has been
/// handed over. Time in which nothing has to be drawn does not count.
class FrameTimer : public QObject {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(QQuickWindow* window READ window WRITE setWindow NOTIFY windowChanged)
  Q_PROPERTY(double milliseconds READ milliseconds NOTIFY measured)

 public:
  using QObject::QObject;
  ~FrameTimer() override { setWindow(nullptr); }

  [[nodiscard]] QQuickWindow* window() const { return window_; }
  /// The window to measure; null for none.
  void setWindow(QQuickWindow* value);

  /// Time of a recent frame, in tenths; 0 before the first. Updated at most a few times a second. The frame after an
  /// update is not measured: it may only show the new figure, and would cause another update.
  [[nodiscard]] double milliseconds() const { return milliseconds_; }

 signals:
  void windowChanged();
  void measured();

 private:
  /// Shared with the thread that draws, which may outlive this for a frame.
  struct Clock {
    QElapsedTimer sinceBeginning;
    std::atomic<double> milliseconds = 0;
  };

  void renew();

  QPointer<QQuickWindow> window_;
  std::shared_ptr<Clock> clock_;
  QMetaObject::Connection begin_, end_;
  QElapsedTimer sinceRenewal_;
  bool justRenewed_ = false;
  double milliseconds_ = 0;
};

}  // namespace gavrel
