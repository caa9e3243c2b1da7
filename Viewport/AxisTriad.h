#pragma once

#include "Viewport/CameraOverlay.h"

/// Shows where the scene's axes point.
class AxisTriad : public CameraOverlay {
  Q_OBJECT
  QML_ELEMENT

 public:
  using CameraOverlay::CameraOverlay;

  void paint(QPainter* painter) override;
};
