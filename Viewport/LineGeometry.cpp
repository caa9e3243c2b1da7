#include "Viewport/LineGeometry.h"

#include <QByteArray>
#include <QVector3D>
#include <QVector4D>
#include <cstddef>
#include <utility>

namespace gavrel {

namespace {

struct Vertex {
  QVector3D position;
  QVector4D color;
};

}  // namespace

LineGeometry::LineGeometry(QQuick3DObject* parent) : QQuick3DGeometry(parent) {
  setStride(sizeof(Vertex));
  addAttribute(Attribute::PositionSemantic, offsetof(Vertex, position), Attribute::F32Type);
  addAttribute(Attribute::ColorSemantic, offsetof(Vertex, color), Attribute::F32Type);
  setPrimitiveType(PrimitiveType::Lines);
  setBounds({-1, -1, -1}, {1, 1, 1});
}

void LineGeometry::setTubes(InstanceTable* value) {
  if (tubes_) tubes_->disconnect(this);
  tubes_ = value;
  connect(value, &InstanceTable::sizeChanged, this, [this] {
    outdated_ = true;
    buildIfShown();
  });
  outdated_ = true;
  buildIfShown();
}

void LineGeometry::setShown(bool value) {
  if (std::exchange(shown_, value) == value) return;
  buildIfShown();
  emit shownChanged();
}

void LineGeometry::buildIfShown() {
  if (!shown_ || !tubes_ || !std::exchange(outdated_, false)) return;
  QByteArray vertices(tubes_->size() * static_cast<qsizetype>(2 * sizeof(Vertex)), Qt::Uninitialized);
  auto* vertex = reinterpret_cast<Vertex*>(vertices.data());
  for (const auto& tube : tubes_->rows()) {
    const QVector3D middle(tube.row0.w(), tube.row1.w(), tube.row2.w());
    const QVector3D half = 0.5F * QVector3D(tube.row0.y(), tube.row1.y(), tube.row2.y());
    *vertex++ = {middle - half, tube.color};
    *vertex++ = {middle + half, tube.color};
  }
  setVertexData(vertices);
  update();
}

}  // namespace gavrel
