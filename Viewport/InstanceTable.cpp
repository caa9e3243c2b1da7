#include "Viewport/InstanceTable.h"

#include <QVector4D>
#include <cmath>
#include <cstring>

namespace gavrel {

namespace {

float single(double number) {
  return static_cast<float>(number);
}

}  // namespace

void InstanceTable::append(const Transform& world, const Vector3& stretch, const Vector3& origin, const Color& color) {
  const auto& [x, y, z] = world.columns;
  const Vector3 place = world.translation - origin;
  InstanceTableEntry row;
  row.row0 = QVector4D(single(x.x * stretch.x), single(y.x * stretch.y), single(z.x * stretch.z), single(place.x));
  row.row1 = QVector4D(single(x.y * stretch.x), single(y.y * stretch.y), single(z.y * stretch.z), single(place.y));
  row.row2 = QVector4D(single(x.z * stretch.x), single(y.z * stretch.y), single(z.z * stretch.z), single(place.z));
  row.color = QVector4D(single(color.red), single(color.green), single(color.blue), single(color.alpha));
  row.instanceData = QVector4D(single(stretch.x), 0, 0, 0);
  rows_.append(reinterpret_cast<const char*>(&row), rowSize);
}

std::span<const InstanceTable::InstanceTableEntry> InstanceTable::rows() const {
  return {reinterpret_cast<const InstanceTableEntry*>(rows_.constData()), static_cast<std::size_t>(size())};
}

void InstanceTable::publish() {
  markDirty();
  emit sizeChanged();
}

QByteArray InstanceTable::getInstanceBuffer(int* instanceCount) {
  if (instanceCount != nullptr) *instanceCount = size();
  return rows_;
}

}  // namespace gavrel
