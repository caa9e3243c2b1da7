#include "Scene/Scene.h"

#include <cmath>

namespace gavrel {

void SceneNode::lookAt(const Vector3& target) {
  const Vector3 sight = target - position;
  if (sight == Vector3{}) return;
  const double yaw = std::atan2(-sight.x, -sight.z);
  const double pitch = std::atan2(sight.y, std::hypot(sight.x, sight.z));
  // The rotation by the pitch about x, then by the yaw about y, combined by the product of their quaternions.
  const double cy = std::cos(yaw / 2), sy = std::sin(yaw / 2), cp = std::cos(pitch / 2), sp = std::sin(pitch / 2);
  const Vector3 axis{cy * sp, sy * cp, -sy * sp};
  rotation = {axis, 2 * std::atan2(length(axis), cy * cp)};
}

}  // namespace gavrel
