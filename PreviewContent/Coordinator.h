#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "PreviewContent/SceneKitView.h"
#include "Scene/HitTest.h"

namespace gavrel {

/// Owns the scene while the 3D area exists, and turns clicks into selections.
class SceneKitView::Coordinator {
 public:
  Scene scene;
  std::shared_ptr<Project> currentProject;
  Binding<std::optional<std::int64_t>> selectedNodeBinding;
  Binding<std::optional<std::int64_t>> selectedElementBinding;
  Binding<double> currentDisplacementMagnification;
  Binding<AppMode> appModeBinding;
  Binding<std::vector<std::int64_t>> selectedNodesForTrussBinding;
  Binding<bool> isStrainVisualizationActive;

  Coordinator(Scene scene, std::shared_ptr<Project> initialProject,
              Binding<std::optional<std::int64_t>> selectedNodeBinding,
              Binding<std::optional<std::int64_t>> selectedElementBinding, Binding<double> displacementMagnification,
              Binding<AppMode> appModeBinding, Binding<std::vector<std::int64_t>> selectedNodesForTrussBinding,
              Binding<bool> isStrainVisualizationActive);

  /// Handles a click that hit these shapes, nearest first; only the first counts.
  ///
  /// A name that ends in a digit selects the element of that number, a node's name included; a name "element_" and a
  /// number then selects that element, and a name that is a number selects that node or, while an element is being
  /// added, appends it to the collected nodes unless it is there. A click beside everything, or on a shape without a
  /// name, clears the element selection and, in normal mode, the node selection.
  void handleClick(const std::vector<HitTestResult>& hits);

 private:
  void clearSelection();
};

}  // namespace gavrel
