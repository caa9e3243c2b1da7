#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "DataModel/Project.h"
#include "PreviewContent/AppMode.h"
#include "PreviewContent/Binding.h"
#include "Scene/Scene.h"

namespace gavrel {

/// What the 3D area shows of a project, and how its picture is built: a ball for each node, a tube for each bar and
/// beam in its deformed place, arrows for loads and cones for restraints. The picture is built anew on every update.
///
/// Scene nodes are named for picking: balls by the node's identifier, tubes "element_" and the element's identifier
/// (of trusses and beams alike), arrows "load_node_" and markers "rest_x_node_" (y, z) with the node's identifier. Only
/// the coordinator reads names; whatever else asks what a scene node shows takes its source.
class SceneKitView {
 public:
  struct SCNOptions {
    std::int64_t rawValue = 0;

    static const SCNOptions showsStatistics;
    static const SCNOptions allowsCameraControl;

    [[nodiscard]] bool contains(SCNOptions other) const { return (rawValue & other.rawValue) == other.rawValue; }
  };

  /// The greatest and the smallest strain of all trusses; `min` is above `max` in a project without any.
  struct StrainExtremes {
    double min = 9999999.0;
    double max = -9999999.0;
  };

  class Coordinator;

  std::shared_ptr<Project> project;
  SCNOptions options;
  Binding<std::optional<std::int64_t>> selectedNodeForSheet;
  Binding<std::optional<std::int64_t>> selectedElementForSheet;
  Binding<double> displacementMagnification;  ///< drawn length of the largest displacement
  Binding<AppMode> appMode;
  Binding<std::vector<std::int64_t>> selectedNodesForTruss;
  Binding<bool> isStrainVisualizationActive;

  /// Builds the scene's background and the camera and lights that stand until the first update.
  void makeNSView(Coordinator& coordinator) const;

  /// Hands the coordinator the present project and bindings, then rebuilds its scene.
  void updateNSView(Coordinator& coordinator) const;

  /// A coordinator with an empty scene.
  [[nodiscard]] std::unique_ptr<Coordinator> makeCoordinator() const;

  /// Replaces everything in the scene: camera, lights, nodes, trusses, beams, loads, restraints, in this order. A truss
  /// whose nodes are missing is left out with a warning on standard output, a beam silently. Negative node identifiers
  /// in elements are fatal.
  void updateScene(Scene& scene) const;

  /// The balls and tubes of these nodes and elements, by position, as updateScene places them. What it leaves out is
  /// left out here, too.
  [[nodiscard]] SceneNode buildShapes(const std::vector<std::int64_t>& nodes, const std::vector<std::int64_t>& trusses,
                                      const std::vector<std::int64_t>& beams) const;

  /// A tube from one point to the other. Its length is rounded to single precision.
  [[nodiscard]] static SceneNode createCylinderNode(const Vector3& from, const Vector3& to, double radius);

  /// A group of a shaft from one point towards the other and a cone head centred on the latter, so that the tip stands
  /// half a head beyond it. Two points in the same place give numbers that are not finite.
  [[nodiscard]] static SceneNode createArrowNode(const Vector3& from, const Vector3& to, double shaftRadius,
                                                 double arrowheadRadius, double arrowheadLength, const Color& color);

  [[nodiscard]] static StrainExtremes strainExtremes(const Project& project);

  /// Neutral grey for no strain, blending to red at the largest and to blue at the smallest strain, each side scaled
  /// by its own extreme; neutral throughout where both extremes are the same.
  [[nodiscard]] static Color colorForStrain(double strain, double minStrain, double maxStrain);
};

inline constexpr SceneKitView::SCNOptions SceneKitView::SCNOptions::showsStatistics{1};
inline constexpr SceneKitView::SCNOptions SceneKitView::SCNOptions::allowsCameraControl{2};

}  // namespace gavrel
