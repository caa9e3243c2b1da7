#include "PreviewContent/Coordinator.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>
#include <utility>

namespace gavrel {

namespace {

constexpr std::string_view elementPrefix = "element_";

/// A whole text of decimal digits with an optional sign.
std::optional<std::int64_t> wholeNumber(std::string_view text) {
  if (text.starts_with("+") && !text.starts_with("+-")) text.remove_prefix(1);
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::string without(std::string text, std::string_view part) {
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at)) text.erase(at, part.size());
  return text;
}

}  // namespace

SceneKitView::Coordinator::Coordinator(Scene scene_, std::shared_ptr<Project> initialProject,
                                       Binding<std::optional<std::int64_t>> selectedNode,
                                       Binding<std::optional<std::int64_t>> selectedElement,
                                       Binding<double> displacementMagnification, Binding<AppMode> appMode,
                                       Binding<std::vector<std::int64_t>> selectedNodesForTruss,
                                       Binding<bool> isStrainActive)
    : scene(std::move(scene_)),
      currentProject(std::move(initialProject)),
      selectedNodeBinding(std::move(selectedNode)),
      selectedElementBinding(std::move(selectedElement)),
      currentDisplacementMagnification(std::move(displacementMagnification)),
      appModeBinding(std::move(appMode)),
      selectedNodesForTrussBinding(std::move(selectedNodesForTruss)),
      isStrainVisualizationActive(std::move(isStrainActive)) {}

void SceneKitView::Coordinator::handleClick(const std::vector<HitTestResult>& hits) {
  if (hits.empty() || !hits.front().node->name) return clearSelection();
  // A copy, since the bindings below may replace the scene.
  const std::string name = *hits.front().node->name;

  if (!name.empty() && name.back() >= '0' && name.back() <= '9') selectedElementBinding.set(name.back() - '0');

  if (name.starts_with(elementPrefix)) {
    if (const auto element = wholeNumber(without(name, elementPrefix))) return selectedElementBinding.set(*element);
  }
  const auto node = wholeNumber(name);
  if (!node) return;
  if (appModeBinding.get() == AppMode::normal) return selectedNodeBinding.set(*node);
  auto collected = selectedNodesForTrussBinding.get();
  if (std::ranges::find(collected, *node) != collected.end()) return;
  collected.push_back(*node);
  selectedNodesForTrussBinding.set(std::move(collected));
}

void SceneKitView::Coordinator::clearSelection() {
  if (appModeBinding.get() == AppMode::normal) selectedNodeBinding.set(std::nullopt);
  selectedElementBinding.set(std::nullopt);
}

}  // namespace gavrel
