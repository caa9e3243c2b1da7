#include "Scene/HitTest.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "Scene/Transform.h"

namespace gavrel {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

Vector3 cross(const Vector3& a, const Vector3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// The part of a line on which it is inside something convex; empty where `from` is above `to`.
struct Span {
  double from = -infinity;
  double to = infinity;

  void cut(const Span& other) {
    from = std::max(from, other.from);
    to = std::min(to, other.to);
  }
};

constexpr Span nowhere{infinity, -infinity};

/// Where -limit <= position + t speed <= limit.
Span slab(double position, double speed, double limit) {
  if (speed == 0) return std::abs(position) <= limit ? Span{} : nowhere;
  const double a = (-limit - position) / speed;
  const double b = (limit - position) / speed;
  return {std::min(a, b), std::max(a, b)};
}

/// Where a t^2 + 2 b t + c <= 0. For a < 0 these are two parts: the one of larger t if `later`, else the other.
/// `discriminant`: b^2 - a c, computed by Lagrange's identity, since the difference loses its digits where a long tube
/// is met far from its middle.
Span belowZero(double a, double b, double c, double discriminant, bool later) {
  if (a == 0) {
    if (b == 0) return c <= 0 ? Span{} : nowhere;
    return b > 0 ? Span{-infinity, -c / (2 * b)} : Span{-c / (2 * b), infinity};
  }
  if (discriminant < 0 && a > 0) return nowhere;
  // The root without cancellation, and the other by their product c / a.
  const double q = -(b + std::copysign(std::sqrt(std::max(discriminant, 0.0)), b));
  const double first = q / a;
  const double second = q != 0 ? c / q : first;
  const Span between{std::min(first, second), std::max(first, second)};
  if (a > 0) return between;
  return later ? Span{between.to, infinity} : Span{-infinity, between.from};
}

/// The spans of the line o + t d inside a shape in its own axes; o is near the shape, so that no digits are lost.
Span inside(const Sphere& ball, double growth, const Vector3& o, const Vector3& d) {
  const double r = ball.radius * growth;
  const double a = dot(d, d);
  const Vector3 moment = cross(o, d);
  return belowZero(a, dot(o, d), dot(o, o) - r * r, r * r * a - dot(moment, moment), true);
}

Span inside(const Tube& tube, double growth, const Vector3& o, const Vector3& d) {
  const double r = tube.radius * growth;
  const double a = d.x * d.x + d.z * d.z;
  const double moment = o.z * d.x - o.x * d.z;
  Span span = belowZero(a, o.x * d.x + o.z * d.z, o.x * o.x + o.z * o.z - r * r, r * r * a - moment * moment, true);
  span.cut(slab(o.y, d.y, tube.height / 2));
  return span;
}

Span inside(const Cone& cone, double growth, const Vector3& o, const Vector3& d) {
  // At depth w below the apex the cone is k w wide.
  const double k = cone.bottomRadius * growth / cone.height;
  const double w = cone.height / 2 - o.y;
  const Vector3 moment = cross({o.x, -w, o.z}, d);
  Span span = belowZero(d.x * d.x + d.z * d.z - k * k * d.y * d.y, o.x * d.x + o.z * d.z + k * k * w * d.y,
                        o.x * o.x + o.z * o.z - k * k * w * w,
                        k * k * (moment.x * moment.x + moment.z * moment.z) - moment.y * moment.y, d.y < 0);
  span.cut(slab(o.y, d.y, cone.height / 2));
  return span;
}

/// Radius across and half length along the y axis; zero for a node without a shape.
struct Extent {
  double radius = 0;
  double half = 0;
};

Extent findExtent(const SceneNode& node) {
  if (const auto* ball = std::get_if<Sphere>(&node.content)) return {ball->radius, 0};
  if (const auto* tube = std::get_if<Tube>(&node.content)) return {tube->radius, tube->height / 2};
  if (const auto* cone = std::get_if<Cone>(&node.content)) return {cone->bottomRadius, cone->height / 2};
  return {};
}

class HitTester {
 public:
  HitTester(const Ray& ray, std::vector<HitTestResult>& results) : ray_(ray), results_(results) {
    const double size = std::hypot(ray.direction.x, ray.direction.y, ray.direction.z);
    ray_.direction = {ray.direction.x / size, ray.direction.y / size, ray.direction.z / size};
  }

  void test(const SceneNode& parent, const Transform* outer) {
    for (const SceneNode& node : parent.children) {
      if (outer != nullptr || mayMeet(node)) {
        if (const auto distance = meet(node, outer)) results_.push_back({&node, *distance});
      }
      if (isInParentsAxes(node)) {
        test(node, outer);
      } else if (!node.children.empty()) {
        const Transform own = computeTransform(node);
        const Transform world = outer == nullptr ? own : *outer * own;
        test(node, &world);
      }
    }
  }

 private:
  [[nodiscard]] double growth(double distance) const { return std::max(ray_.thickness, ray_.thickening * distance); }

  /// False if the ray passes outside of a ball around the shape: a quick test before the exact one.
  [[nodiscard]] bool mayMeet(const SceneNode& node) const {
    const auto [radius, half] = findExtent(node);
    const double largest = std::max({std::abs(node.scale.x), std::abs(node.scale.y), std::abs(node.scale.z)});
    const Vector3 offset = node.position - ray_.origin;
    const double thick = radius * growth(length(offset) + half * largest);
    const double reach2 = (thick * thick + half * half) * largest * largest;
    const double along = dot(offset, ray_.direction);
    const double away2 = dot(offset, offset) - along * along;
    // With room for the rounding errors of the difference when the shape is far away.
    return away2 <= reach2 + 1e-12 * along * along && (along >= 0 || along * along <= reach2);
  }

  [[nodiscard]] std::optional<double> meet(const SceneNode& node, const Transform* outer) const {
    const auto [radius, half] = findExtent(node);
    const bool isBall = std::holds_alternative<Sphere>(node.content);
    if (!(radius > 0) || !std::isfinite(half) || !(half > 0 || isBall)) return std::nullopt;
    const Transform own = computeTransform(node);
    const Transform world = outer == nullptr ? own : *outer * own;
    const auto& [a, b, c] = world.columns;
    const Vector3 bc = cross(b, c), ca = cross(c, a), ab = cross(a, b);
    const double determinant = dot(a, bc);
    // A flattened shape keeps a little volume by rounding if its parent is rotated.
    if (!(std::abs(determinant) > 1e-14 * length(a) * length(b) * length(c))) return std::nullopt;
    const auto local = [&](const Vector3& v) {
      return Vector3{dot(bc, v) / determinant, dot(ca, v) / determinant, dot(ab, v) / determinant};
    };
    // Counted from where the ray passes the shape's middle, t is small there and keeps its digits.
    const double passing = dot(world.translation - ray_.origin, ray_.direction);
    const Vector3 o = local(ray_.at(passing) - world.translation);
    const Vector3 d = local(ray_.direction);
    const double thick = ray_.thickening > 0 ? growth(distanceOfAxis(world, half)) : ray_.thickness;
    const Span span = std::visit(
        [&](const auto& shape) {
          if constexpr (requires { inside(shape, thick, o, d); }) return inside(shape, thick, o, d);
          return nowhere;
        },
        node.content);
    const double in = passing + span.from;
    const double out = passing + span.to;
    if (!(in <= out) || !(out >= 0) || !std::isfinite(in + out)) return std::nullopt;
    return in >= 0 ? in : out;
  }

  /// From the ray's origin to the point of the shape's axis nearest to the ray (Ericson, Real-Time Collision Detection,
  /// 5.1.9).
  [[nodiscard]] double distanceOfAxis(const Transform& world, double half) const {
    const Vector3 start = world.point({0, -half, 0});
    const Vector3 axis = world.direction({0, 2 * half, 0});
    const Vector3 offset = start - ray_.origin;
    const double along = dot(axis, ray_.direction);
    const double denominator = dot(axis, axis) - along * along;
    const double s = denominator > 0
                         ? std::clamp((along * dot(ray_.direction, offset) - dot(axis, offset)) / denominator, 0.0, 1.0)
                         : 0;
    return length(offset + axis * s);
  }

  Ray ray_;
  std::vector<HitTestResult>& results_;
};

}  // namespace

std::vector<HitTestResult> hitTest(const Scene& scene, const Ray& ray) {
  std::vector<HitTestResult> results;
  HitTester(ray, results).test(scene.rootNode, nullptr);
  std::ranges::stable_sort(results, {}, &HitTestResult::distance);
  return results;
}

}  // namespace gavrel
