#include "Scene/Transform.h"

#include <cmath>

namespace gavrel {

Vector3 Transform::direction(const Vector3& v) const {
  const auto& [a, b, c] = columns;
  return a * v.x + b * v.y + c * v.z;
}

Vector3 Transform::point(const Vector3& p) const {
  return direction(p) + translation;
}

Transform Transform::operator*(const Transform& inner) const {
  return {{direction(inner.columns[0]), direction(inner.columns[1]), direction(inner.columns[2])},
          point(inner.translation)};
}

Transform computeTransform(const SceneNode& node) {
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
  for (unsigned i = 0; i < 3; ++i) t.columns[i] = t.columns[i] * scales[i];
  t.translation = node.position;
  return t;
}

}  // namespace gavrel
