#pragma once

#include <qqml.h>
#include <QQuick3DGeometry>

namespace gavrel {

/// The mesh of one shape of radius 1 about its local y axis: a ball, an open tube of height 1, or a cone of height 1
/// with its base. Instances scale it.
class ShapeGeometry : public QQuick3DGeometry {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(Shape shape READ shape WRITE setShape NOTIFY changed)
  Q_PROPERTY(int sides READ sides WRITE setSides NOTIFY changed)
  Q_PROPERTY(int triangles READ triangles NOTIFY changed)

 public:
  enum Shape { Ball, Tube, Cone };
  Q_ENUM(Shape)

  explicit ShapeGeometry(QQuick3DObject* parent = nullptr);

  [[nodiscard]] Shape shape() const { return shape_; }
  void setShape(Shape value);
  /// Corners of the shape's section across its axis; at least 3.
  [[nodiscard]] int sides() const { return sides_; }
  void setSides(int value);
  [[nodiscard]] int triangles() const { return static_cast<int>(indexData().size() / (3 * sizeof(quint16))); }

 signals:
  void changed();

 private:
  void build();

  Shape shape_ = Ball;
  int sides_ = 12;
};

}  // namespace gavrel
