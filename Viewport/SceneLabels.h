#pragma once

#include "Viewport/CameraOverlay.h"

namespace gavrel {

/// The numbers of nodes and elements beside them. Where there is no room for all, those nearest to the viewer are
/// shown.
class SceneLabels : public gavrel::CameraOverlay {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(bool nodeNumbers MEMBER nodeNumbers_ NOTIFY changed)
  Q_PROPERTY(bool elementNumbers MEMBER elementNumbers_ NOTIFY changed)

 public:
  explicit SceneLabels(QQuickItem* parent = nullptr);

  void paint(QPainter* painter) override;

 signals:
  void changed();

 private:
  bool nodeNumbers_ = false;
  bool elementNumbers_ = false;
};

}  // namespace gavrel
