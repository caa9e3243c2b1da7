#pragma once

#include <optional>
#include <vector>

#include "DataModel/Vector3.h"
#include "Scene/Bounds.h"
#include "Scene/HitTest.h"

namespace gavrel {

/// A camera that the user turns around the structure, with y or z kept upright: in perspective, or in parallel
/// projection. Points on the picture are in pixels from its upper left corner.
class OrbitCamera {
 public:
  static constexpr double fieldOfView = 60;  ///< vertical, in degrees

  /// Right, up and backward: the camera's own axes in the scene.
  struct Axes {
    Vector3 right;
    Vector3 up;
    Vector3 back;
  };

  Vector3 position{0, 5, 10};
  bool zUp = false;  ///< whether z is upright instead of y
  double yaw = 0;    ///< turn about the upright axis, in radians; at 0 the camera looks along -z, or along y if z is up
  double pitch = 0;  ///< upward slope of the line of sight, in radians, from -π/2 to π/2
  double width = 1;  ///< of the picture, in pixels
  double height = 1;
  bool parallel = false;  ///< parallel projection instead of perspective; change it by setParallel
  double span = 10;       ///< length that the picture's height covers in parallel projection

  [[nodiscard]] Axes axes() const;

  /// Changes between perspective and parallel projection; what is as deep as `reference` keeps its size.
  void setParallel(bool value, const Vector3& reference);

  /// In parallel projection, moves along the line of sight to where the whole box is before the camera, which changes
  /// nothing in the picture.
  void retreatFrom(const Bounds& box);

  /// Turns the camera about `pivot`, which keeps its place on the picture, to the left and downward.
  void orbit(const Vector3& pivot, double left, double down);

  /// Moves so that points at the same depth as `reference` follow the pointer by (dx, dy) pixels.
  void pan(const Vector3& reference, double dx, double dy);

  /// Moves towards (factor > 1) or away from `reference`, which keeps its place on the picture, so that it looks
  /// `factor` times as large. Stops at the distance `closest` from it, or where the picture's height covers that.
  void zoom(const Vector3& reference, double factor, double closest);

  /// Margins of the picture, in pixels.
  struct Insets {
    double left;
    double bottom;
  };

  /// Moves to where the points fill the picture within its insets, without turning. Points with numbers that are not
  /// finite are left out; nothing happens without points.
  void fit(const std::vector<Vector3>& points, const Insets& insets = {0, 0});

  /// The line of sight through a point of the picture, with directions of length 1.
  [[nodiscard]] Ray ray(double x, double y) const;

  struct PicturePoint {
    double x, y;
    double depth;
  };
  /// Where a point is seen; nothing for one behind the camera.
  [[nodiscard]] std::optional<PicturePoint> project(const Vector3& point) const;

  /// Distance along the line of sight; negative behind the camera.
  [[nodiscard]] double depth(const Vector3& point) const;

  struct ClipPlanes {
    double near;
    double far;
  };
  /// Planes that cut off nothing of the box, except for parts too near for the precision of the depth buffer.
  [[nodiscard]] ClipPlanes clipPlanes(const Bounds& box) const;

  /// Length that a pixel covers at a distance of 1 in perspective.
  [[nodiscard]] double pixelAngle() const;

  /// Length that a pixel covers at this depth.
  [[nodiscard]] double pixelLength(double depth) const;

 private:
  void fitParallel(const std::vector<Vector3>& points, const Bounds& box, const Insets& insets);
};

}  // namespace gavrel
