#pragma once

#include <variant>

#include "Scene/Scene.h"
#include "Scene/Transform.h"

namespace gavrel {

[[nodiscard]] inline bool hasShape(const SceneNode& node) {
  return std::holds_alternative<Sphere>(node.content) || std::holds_alternative<Tube>(node.content) ||
         std::holds_alternative<Cone>(node.content);
}

/// Calls visit(node, world) for every ball, tube and cone below `root`, in the order of the tree; `world` leads from
/// the node's own axes to those of `root`.
template <class Visit>
void forEachShape(const SceneNode& root, const Visit& visit, const Transform* outer = nullptr) {
  for (const SceneNode& node : root.children) {
    if (!hasShape(node) && isInParentsAxes(node)) {
      forEachShape(node, visit, outer);
      continue;
    }
    const Transform own = computeTransform(node);
    const Transform world = outer == nullptr ? own : *outer * own;
    if (hasShape(node)) visit(node, world);
    if (!node.children.empty()) forEachShape(node, visit, &world);
  }
}

}  // namespace gavrel
