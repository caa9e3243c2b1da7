#pragma once

#include <qqml.h>
#include <QPointer>
#include <QQuickPaintedItem>

#include "Viewport/ViewCamera.h"

namespace gavrel {

/// A 2D item over the 3D area that is repainted whenever the camera or the scene changes.
class CameraOverlay : public QQuickPaintedItem {
  Q_OBJECT
  QML_ANONYMOUS
  Q_PROPERTY(gavrel::ViewCamera* camera READ camera WRITE setCamera REQUIRED)

 public:
  explicit CameraOverlay(QQuickItem* parent = nullptr) : QQuickPaintedItem(parent) { setAntialiasing(true); }

  [[nodiscard]] ViewCamera* camera() const { return camera_; }
  void setCamera(ViewCamera* value) {
    camera_ = value;
    connect(value, &ViewCamera::changed, this, [this] { update(); });
    update();
  }

 private:
  QPointer<ViewCamera> camera_;
};

}  // namespace gavrel
