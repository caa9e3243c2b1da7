#include "Viewport/GraphicsHardware.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQuickWindow>
#include <string_view>

namespace gavrel {

namespace {

/// The renderers of Mesa that work without a graphics processor.
bool isSoftware(std::string_view renderer) {
  for (const std::string_view name : {"llvmpipe", "softpipe", "swrast"}) {
    if (renderer.find(name) != std::string_view::npos) return true;
  }
  return false;
}

}  // namespace

void GraphicsHardware::itemChange(ItemChange change, const ItemChangeData& data) {
  if (change == ItemSceneChange && data.window != nullptr)
    connect(data.window, &QQuickWindow::beforeRendering, this, &GraphicsHardware::look, Qt::SingleShotConnection);
  QQuickItem::itemChange(change, data);
}

void GraphicsHardware::look() {
  QOpenGLContext* context = QOpenGLContext::currentContext();
  if (context == nullptr) return;
  const auto* renderer = reinterpret_cast<const char*>(context->functions()->glGetString(GL_RENDERER));
  if (renderer == nullptr || isSoftware(renderer)) return;
  accelerated_ = true;
  emit acceleratedChanged();
}

}  // namespace gavrel
