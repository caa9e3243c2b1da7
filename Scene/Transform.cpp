#include "Scene/Transform.h"

#include <cmath>

Vector3 Transform::direction(const Vector3& v) const {
  const auto& [a, b, c] = columns;
  return {a.x * v.x + b.x * v.y + c.x * v.z, a.y * v.x + b.y * v.y + c.y * v.z, a.z * v.x + b.z * v.y + c.z * v.z};
}

Vector3 Transform::point(const Vector3& p) const {
  const Vector3 turned = direction(p);
  return {turned.x + translation.x, turned.y + translation.y, turned.z + translation.z};
}

Transform Transform::operator*(const Transform& inner) const {
  return {{direction(inner.columns[0]), direction(inner.columns[1]), direction(inner.columns[2])},
          point(inner.translation)};
}

Transform transformOf(const SceneNode& node) {
  Transform t;
  const auto& [axis, angle] = node.rotation;
  const double size = std::hypot(axis.x, axis.y, axis.z);
  if (size != 0 && angle != 0) {
    const double x = axis.x / size, y = axis.y / size, z = axis.z / size;
    const double c = std::cos(angle), s = std::sin(angle), v = 1 - c;
    t.columns = {{{c + x * x * v, z * s + x * y * v, x * z * v - y * s},
                  {x * y * v - z * s, c + y * y * v, x * s + y * z * v},
                  {y * s + x * z * v, y * z * v - x * s, c + z * z * v}}};
  }
  const double scales[] = {node.scale.x, node.scale.y, node.scale.z};
  for (unsigned i = 0; i < 3; ++i) {
    Vector3& column = t.columns[i];
    column = {column.x * scales[i], column.y * scales[i], column.z * scales[i]};
  }
  t.translation = node.position;
  return t;
}
