#pragma once

#include <array>

#include "DataModel/Vector3.h"
#include "Scene/Scene.h"

namespace gavrel {

/// An affine map x -> M x + t of points.
struct Transform {
  std::array<Vector3, 3> columns{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};  ///< images of the unit vectors: the columns of M
  Vector3 translation;

  [[nodiscard]] Vector3 direction(const Vector3& v) const;
  [[nodiscard]] Vector3 point(const Vector3& p) const;
  /// The map that applies `inner` first, then this one.
  [[nodiscard]] Transform operator*(const Transform& inner) const;
};

/// The map from the node's own axes to its parent's: scale, then rotation (Rodrigues' formula), then position.
[[nodiscard]] Transform computeTransform(const SceneNode& node);

/// Whether this map is the identity, as for nodes that only group their children.
[[nodiscard]] inline bool isInParentsAxes(const SceneNode& node) {
  return node.rotation.angle == 0 && node.position == Vector3{} && node.scale == Vector3{1, 1, 1};
}

}  // namespace gavrel
