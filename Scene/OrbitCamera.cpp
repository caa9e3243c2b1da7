#include "Scene/OrbitCamera.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace gavrel {

namespace {

constexpr double pi = std::numbers::pi;
constexpr double margin = 1.1;         // of a fitted picture
constexpr double closestFit = 2;       // smallest distance of a fitted view, for a single node
constexpr double deepestRatio = 1e-4;  // of near to far: what 24 bits of depth resolve

/// The range that holds every r - s and r + s that was added.
struct Interval {
  double low = Bounds::infinity;
  double high = -Bounds::infinity;

  void add(double r, double s) {
    low = std::min(low, r - s);
    high = std::max(high, r + s);
  }
  [[nodiscard]] double middle() const { return (low + high) / 2; }
  [[nodiscard]] double half() const { return (high - low) / 2; }
};

double tangentOfHalf() {
  return std::tan(OrbitCamera::fieldOfView / 2 * pi / 180);
}

}  // namespace

OrbitCamera::Axes OrbitCamera::axes() const {
  const double cy = std::cos(yaw), sy = std::sin(yaw), cp = std::cos(pitch), sp = std::sin(pitch);
  const auto upright = [this](const Vector3& v) { return zUp ? Vector3{v.x, -v.z, v.y} : v; };
  return {upright({cy, 0, -sy}), upright({sy * sp, cp, cy * sp}), upright({sy * cp, -sp, cy * cp})};
}

void OrbitCamera::orbit(const Vector3& pivot, double left, double down) {
  const Vector3 offset = pivot - position;
  const Axes before = axes();
  const Vector3 seen{dot(offset, before.right), dot(offset, before.up), dot(offset, before.back)};
  yaw = std::remainder(yaw + left, 2 * pi);
  pitch = std::clamp(pitch - down, -pi / 2, pi / 2);
  const Axes after = axes();
  position = pivot - after.right * seen.x - after.up * seen.y - after.back * seen.z;
}

void OrbitCamera::pan(const Vector3& reference, double dx, double dy) {
  const Axes a = axes();
  const double perPixel = pixelAngle() * std::abs(depth(reference));
  position = position - a.right * (dx * perPixel) + a.up * (dy * perPixel);
}

void OrbitCamera::zoom(const Vector3& reference, double factor, double closest) {
  const Vector3 offset = reference - position;
  const double distance = length(offset);
  const double wanted = std::max(distance / factor, closest);
  if (distance > 0) position = position + offset * (1 - wanted / distance);
}

void OrbitCamera::fit(const std::vector<Vector3>& points) {
  Bounds box;
  for (const Vector3& point : points) box.add(point, 0);
  if (box.empty()) return;
  const Axes a = axes();
  const Vector3 centre = box.centre();
  const double vertical = tangentOfHalf() / margin;
  const double horizontal = vertical * width / height;
  // A point (r, u, b) in the camera's axes, seen from (x, y, d), is in the picture where |r - x| <= (d - b) horizontal
  // and |u - y| <= (d - b) vertical.
  Interval across;
  Interval upward;
  for (const Vector3& point : points) {
    const Vector3 offset = point - centre;
    const double towards = dot(offset, a.back);
    if (!std::isfinite(towards)) continue;
    across.add(dot(offset, a.right), towards * horizontal);
    upward.add(dot(offset, a.up), towards * vertical);
  }
  const double distance = std::max({across.half() / horizontal, upward.half() / vertical, closestFit});
  position = centre + a.right * across.middle() + a.up * upward.middle() + a.back * distance;
}

Ray OrbitCamera::ray(double x, double y) const {
  const Axes a = axes();
  const double right = (x - width / 2) * pixelAngle();
  const double up = (height / 2 - y) * pixelAngle();
  const Vector3 direction = a.right * right - a.back + a.up * up;
  return {position, direction * (1 / length(direction))};
}

std::optional<OrbitCamera::PicturePoint> OrbitCamera::project(const Vector3& point) const {
  const Axes a = axes();
  const Vector3 offset = point - position;
  const double deep = -dot(offset, a.back);
  if (!(deep > 0)) return std::nullopt;
  const double scale = 1 / (deep * pixelAngle());
  return PicturePoint{width / 2 + dot(offset, a.right) * scale, height / 2 - dot(offset, a.up) * scale, deep};
}

double OrbitCamera::depth(const Vector3& point) const {
  return -dot(point - position, axes().back);
}

OrbitCamera::ClipPlanes OrbitCamera::clipPlanes(const Bounds& box) const {
  if (box.empty()) return {0.1, 1000};
  double nearest = Bounds::infinity;
  double farthest = 0;
  for (const Vector3& corner : box.corners()) {
    const double deep = depth(corner);
    nearest = std::min(nearest, deep);
    farthest = std::max(farthest, deep);
  }
  const double slack = 0.01 * box.radius();
  const double far = std::max(1.01 * farthest, 1e-3);
  return {std::max(nearest - slack, far * deepestRatio), far};
}

double OrbitCamera::pixelAngle() const {
  return 2 * tangentOfHalf() / height;
}

}  // namespace gavrel
