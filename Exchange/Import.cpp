#include "Exchange/Import.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

#include "DataModel/ArrayLengths.h"
#include "Exchange/Draft.h"
#include "Platform/FileBytes.h"
#include "Platform/ShownText.h"

namespace gavrel {

namespace {

bool isDrawing(const std::filesystem::path& file) {
  return lower(file.extension().string()) == ".dxf";
}

Vector3 findPlace(const Draft& draft, std::int64_t node) {
  const auto existing = draft.project.nodeCount();
  if (node >= existing) return draft.nodes[static_cast<std::size_t>(node - existing)].place;
  return *draft.project.getNodeCoordinates(node);
}

template <class Element>
bool isFinite(const Element& element) {
  bool all = true;
  forEachField<Element>(
      [&](const auto& field) { all = all && std::isfinite(static_cast<double>(element.*field.member)); });
  return all;
}

struct Elements {
  std::vector<TrussElement> trusses;
  std::vector<BeamElement> beams;
};

/// The project's elements, followed by those of the draft.
Result<Elements> joinElements(const Project& project, const Draft& draft) {
  Elements elements{*project.trussElements, *project.beamElements};
  auto& [trusses, beams] = elements;
  const auto newBeams = static_cast<std::size_t>(std::ranges::count(draft.elements, true, &Draft::Element::isBeam));
  beams.reserve(beams.size() + newBeams);
  trusses.reserve(trusses.size() + draft.elements.size() - newBeams);
  for (const Draft::Element& element : draft.elements) {
    const Vector3 start = findPlace(draft, element.start);
    const Vector3 end = findPlace(draft, element.end);
    if (element.isBeam)
      beams.emplace_back(std::ssize(beams), element.start, element.end, start, end, element.area, element.inertiaY,
                         element.inertiaZ, element.youngModulus, element.shearModulus, element.isNonLinear);
    else
      trusses.emplace_back(std::ssize(trusses), element.start, element.end, start, end, element.area,
                           element.youngModulus, element.isCompressionOnly, element.isNonLinear);
    if (element.isBeam ? !isFinite(beams.back()) : !isFinite(trusses.back()))
      return Failure{"the element from node " + std::to_string(element.start) + " to node " +
                     std::to_string(element.end) +
                     ", by the project's numbers, has a length or a stiffness that is too large for a number"};
  }
  return elements;
}

ImportOutcome addTo(Project& project, Draft& draft, Elements elements) {
  ImportOutcome outcome{.nodes = std::ssize(draft.nodes),
                        .trusses = std::ssize(elements.trusses) - std::ssize(*project.trussElements),
                        .beams = std::ssize(elements.beams) - std::ssize(*project.beamElements),
                        .remarks = std::move(draft.remarks)};
  for (const Draft::Node& node : draft.nodes) {
    project.addNode(node.place);
    std::ranges::copy(node.load, project.F_I.edit().end() - dofsPerNode);
    std::copy(node.restrained.begin(), node.restrained.end(), project.D_I.edit().end() - dofsPerNode);
  }
  project.trussElements.edit() = std::move(elements.trusses);
  project.beamElements.edit() = std::move(elements.beams);
  return outcome;
}

}  // namespace

Result<ImportOutcome> importFiles(Project& project, const std::vector<std::filesystem::path>& files,
                                  const ImportSettings& settings) {
  Draft draft{project, settings};
  std::vector<std::pair<std::filesystem::path, CsvTable>> tablesOfElements;
  std::filesystem::path current;
  try {
    for (const auto& file : files) {
      current = file;
      auto content = readFile(file);
      if (!content) return content.failure();
      if (isDrawing(file)) {
        addDrawing(*content, draft);
        continue;
      }
      CsvTable table(std::move(*content));
      if (table.isOfNodes())
        addNodes(table, draft);
      else if (table.isOfElements())
        tablesOfElements.emplace_back(file, std::move(table));
      else
        throw ImportError("line 1: the heading names neither x and y, for nodes, nor start and end, for elements");
    }
    for (const auto& [file, table] : tablesOfElements) {
      current = file;
      addElements(table, draft);
    }
    auto elements = joinElements(project, draft);
    if (!elements) return elements.failure();
    auto filled = fitArrays(project);
    if (!filled) return filled.failure();
    draft.remarks.insert(draft.remarks.begin(), filled->begin(), filled->end());
    return addTo(project, draft, std::move(*elements));
  } catch (const ImportError& error) {
    return Failure{shownText(current.filename().string()) + ", " + error.what()};
  } catch (const std::bad_alloc&) {
    return Failure{"not enough memory"};
  }
}

}  // namespace gavrel
