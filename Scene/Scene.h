#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "DataModel/Vector3.h"

namespace gavrel {

/// A plain tree of named nodes with shapes, lights and a camera: the content of a picture, independent of a renderer.
/// Lengths are those of the model; angles are in radians; colours are sRGB components from 0 to 1.

struct Color {
  double red = 1;
  double green = 1;
  double blue = 1;
  double alpha = 1;

  bool operator==(const Color&) const = default;
};

/// Grey of the given level.
[[nodiscard]] constexpr Color white(double level) {
  return {level, level, level, 1};
}

/// A ball about the origin of its node.
struct Sphere {
  double radius = 1;
};

/// A solid, capped cylinder along the local y axis, centred on the origin.
struct Tube {
  double radius = 1;
  double height = 1;
};

/// A solid cone along the local y axis, centred on the origin: its base at -height / 2, its apex at +height / 2.
struct Cone {
  double bottomRadius = 1;
  double height = 1;
};

struct Camera {};
struct AmbientLight {};
/// Shines along the local -z axis.
struct DirectionalLight {};

/// A rotation by `angle` about `axis`, right-handed. The axis needs no unit length; a zero axis means no rotation.
struct Rotation {
  Vector3 axis{0, 1, 0};
  double angle = 0;
};

/// The part of the structure that a scene node shows: a node, an element, or a load or support of a node.
struct Source {
  enum class Kind { node, bar, beam, load, support };

  Kind kind;
  std::int64_t number;  ///< identifier of the node or the element

  bool operator==(const Source&) const = default;
};

struct SceneNode {
  std::optional<std::string> name;
  std::optional<Source> source;  ///< none for lights, the camera and the parts of arrows
  std::variant<std::monostate, Sphere, Tube, Cone, Camera, AmbientLight, DirectionalLight> content;
  Color color;  ///< of the shape's surface, or of the light
  Vector3 position;
  Rotation rotation;
  Vector3 scale{1, 1, 1};
  std::vector<SceneNode> children;

  /// Turns the local -z axis towards `target`, a point in the parent's axes, with local y as upright as possible.
  /// Nothing happens if `target` is the node's own position.
  void lookAt(const Vector3& target);
};

struct Scene {
  SceneNode rootNode;
  Color background;
};

}  // namespace gavrel
