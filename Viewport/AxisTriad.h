#pragma once

#include "Viewport/CameraOverlay.h"

namespace gavrel {

/// Shows where the scene's axes point.
class AxisTriad : public gavrel::CameraOverlay {
  Q_OBJECT
  QML_ELEMENT

 public:
  using CameraOverlay::CameraOverlay;

  void paint(QPainter* painter) override;
};

}  // namespace gavrel
