#pragma once

#include <qqml.h>
#include <QByteArray>
#include <QQuick3DInstancing>
#include <span>

#include "DataModel/Vector3.h"
#include "Scene/Transform.h"

namespace gavrel {

/// Where one mesh of radius 1 is drawn, how large and in which colour, once for each shape of a kind.
class InstanceTable : public QQuick3DInstancing {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(int size READ size NOTIFY sizeChanged)

 public:
  using QQuick3DInstancing::QQuick3DInstancing;

  [[nodiscard]] int size() const { return static_cast<int>(rows_.size() / rowSize); }

  void clear() { rows_.clear(); }

  /// Appends a shape whose mesh is stretched by `stretch` in its own axes before `world` puts it into the scene, which
  /// is drawn relative to `origin` so that single precision suffices far from zero.
  void append(const Transform& world, const Vector3& stretch, const Vector3& origin, const Color& color);

  /// The rows appended so far.
  [[nodiscard]] std::span<const InstanceTableEntry> rows() const;

  /// Hands the rows over to the renderer.
  void publish();

 signals:
  void sizeChanged();

 protected:
  QByteArray getInstanceBuffer(int* instanceCount) override;

 private:
  static constexpr qsizetype rowSize = sizeof(InstanceTableEntry);

  QByteArray rows_;
};

}  // namespace gavrel
