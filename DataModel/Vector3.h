#pragma once

#include <cmath>

namespace gavrel {

/// A point, displacement or force in global axes, in consistent user units.
struct Vector3 {
  double x = 0;
  double y = 0;
  double z = 0;

  bool operator==(const Vector3&) const = default;
};

[[nodiscard]] inline Vector3 operator-(const Vector3& a, const Vector3& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}

[[nodiscard]] inline Vector3 operator+(const Vector3& a, const Vector3& b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}

[[nodiscard]] inline Vector3 operator*(const Vector3& v, double factor) {
  return {v.x * factor, v.y * factor, v.z * factor};
}

[[nodiscard]] inline double dot(const Vector3& a, const Vector3& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}

[[nodiscard]] inline double length(const Vector3& v) {
  return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
}

}  // namespace gavrel
