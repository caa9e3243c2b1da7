#pragma once

#include <vector>

#include "DataModel/Vector3.h"
#include "Scene/Scene.h"

namespace gavrel {

/// A half-line from `origin` along `direction`, which needs no unit length.
struct Ray {
  Vector3 origin;
  Vector3 direction;
  /// Factor on a shape's thickness per unit of its distance from the origin; the product counts as 1 if it is smaller.
  /// So a shape that a viewer draws thicker, to be seen from afar, is hit as it is drawn. 0 hits the exact shapes.
  double thickening = 0;
  double thickness = 1;  ///< least factor on a shape's thickness

  /// The point at this distance from the origin, where the direction has length 1.
  [[nodiscard]] Vector3 at(double distance) const { return origin + direction * distance; }
};

struct HitTestResult {
  const SceneNode* node = nullptr;  ///< the node that holds the shape
  double distance = 0;              ///< from the ray's origin to the point that was hit, in the scene's units
};

/// Every shape that the ray meets, nearest first, once each. A shape around the ray's origin is met where the ray
/// leaves it. Shapes with numbers that are not finite, and shapes flattened to a plane or less, are never met.
[[nodiscard]] std::vector<HitTestResult> hitTest(const Scene& scene, const Ray& ray);

}  // namespace gavrel
