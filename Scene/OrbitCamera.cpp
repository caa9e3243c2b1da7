#include "Scene/OrbitCamera.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace gavrel {

namespace {

constexpr double pi = std::numbers::pi;
constexpr double margin = 1.1;         // of a fitted picture
constexpr double retreat = 3;          // radii from the middle of what a parallel projection shows
constexpr double closestFit = 2;       // smallest distance of a fitted view, for a single node
constexpr double deepestRatio = 1e-4;  // of near to far: what 24 bits of depth resolve

/// Where a camera at distance d can stand across its line of sight to see points: at x, where for each point, seen r
/// across and b towards the camera, r - x <= (d - b) above and x - r <= (d - b) below, the slopes of the picture's
/// edges.
class Standpoints {
 public:
  Standpoints(double below, double above) : below_(below), above_(above) {}

  void add(double r, double b) {
    low_ = std::min(low_, r - b * below_);
    high_ = std::max(high_, r + b * above_);
  }
  [[nodiscard]] double leastDistance() const { return (high_ - low_) / (below_ + above_); }
  [[nodiscard]] double at(double distance) const { return (low_ + high_ + distance * (below_ - above_)) / 2; }

 private:
  double below_;
  double above_;
  double low_ = Bounds::infinity;
  double high_ = -Bounds::infinity;
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

void OrbitCamera::setParallel(bool value, const Vector3& reference) {
  if (value == parallel) return;
  const double deep = std::abs(depth(reference));
  if (value)
    span = height * pixelLength(deep);
  else
    position = position + axes().back * (span / (height * pixelAngle()) - deep);
  parallel = value;
}

void OrbitCamera::retreatFrom(const Bounds& box) {
  if (!parallel || box.empty()) return;
  const double wanted = std::max(retreat * box.radius(), span);
  position = position + axes().back * (wanted - depth(box.centre()));
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
  const double perPixel = pixelLength(std::abs(depth(reference)));
  position = position - a.right * (dx * perPixel) + a.up * (dy * perPixel);
}

void OrbitCamera::zoom(const Vector3& reference, double factor, double closest) {
  Vector3 offset = reference - position;
  if (parallel) {
    const Vector3 back = axes().back;
    offset = offset - back * dot(offset, back);
    const double wanted = std::max(span / factor, closest);
    position = position + offset * (1 - wanted / span);
    span = wanted;
    return;
  }
  const double distance = length(offset);
  const double wanted = std::max(distance / factor, closest);
  if (distance > 0) position = position + offset * (1 - wanted / distance);
}

void OrbitCamera::fit(const std::vector<Vector3>& points, const Insets& insets) {
  Bounds box;
  for (const Vector3& point : points) box.add(point, 0);
  if (box.empty()) return;
  if (parallel) return fitParallel(points, box, insets);
  const Axes a = axes();
  const Vector3 centre = box.centre();
  const auto standpoints = [this](double size, double inset) {
    const double half = std::max(size - inset, 1.0) / 2 / margin;
    return Standpoints((half - inset / 2) * pixelAngle(), (half + inset / 2) * pixelAngle());
  };
  Standpoints across = standpoints(width, insets.left);
  Standpoints upward = standpoints(height, insets.bottom);
  for (const Vector3& point : points) {
    const Vector3 offset = point - centre;
    const double towards = dot(offset, a.back);
    if (!std::isfinite(towards)) continue;
    across.add(dot(offset, a.right), towards);
    upward.add(dot(offset, a.up), towards);
  }
  const double distance = std::max({across.leastDistance(), upward.leastDistance(), closestFit});
  position = centre + a.right * across.at(distance) + a.up * upward.at(distance) + a.back * distance;
}

void OrbitCamera::fitParallel(const std::vector<Vector3>& points, const Bounds& box, const Insets& insets) {
  const Axes a = axes();
  const Vector3 centre = box.centre();
  Bounds seen;
  for (const Vector3& point : points) {
    const Vector3 offset = point - centre;
    seen.add({dot(offset, a.right), dot(offset, a.up), 0}, 0);
  }
  const Vector3 extent = seen.high - seen.low;
  const double perPixel =
      margin * std::max({extent.x / std::max(width - insets.left, 1.0),
                         extent.y / std::max(height - insets.bottom, 1.0), 2 * closestFit * tangentOfHalf() / height});
  span = perPixel * height;
  position = centre + a.right * (seen.centre().x - insets.left / 2 * perPixel) +
             a.up * (seen.centre().y - insets.bottom / 2 * perPixel);
  retreatFrom(box);
}

Ray OrbitCamera::ray(double x, double y) const {
  const Axes a = axes();
  const double right = (x - width / 2) * pixelLength(1);
  const double up = (height / 2 - y) * pixelLength(1);
  if (parallel) return {position + a.right * right + a.up * up, a.back * -1};
  const Vector3 direction = a.right * right - a.back + a.up * up;
  return {position, direction * (1 / length(direction))};
}

std::optional<OrbitCamera::PicturePoint> OrbitCamera::project(const Vector3& point) const {
  const Axes a = axes();
  const Vector3 offset = point - position;
  const double deep = -dot(offset, a.back);
  if (!(deep > 0)) return std::nullopt;
  const double scale = 1 / pixelLength(deep);
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
  if (parallel) return {nearest - slack, far + slack};
  return {std::max(nearest - slack, far * deepestRatio), far};
}

double OrbitCamera::pixelAngle() const {
  return 2 * tangentOfHalf() / height;
}

double OrbitCamera::pixelLength(double depth) const {
  return parallel ? span / height : pixelAngle() * depth;
}

}  // namespace gavrel
