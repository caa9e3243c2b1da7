#pragma once

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <vector>

#include "DataModel/ProjectFile.h"
#include "Exchange/Export.h"
#include "Exchange/Import.h"
#include "Tests/Fuzz/Require.h"

namespace gavrel {

/// Whether an import ends with a reason that has its place or with a whole project; such a project holds finite numbers
/// and nodes that are there, and comes back from its own tables as it was. Returns the project.
inline std::unique_ptr<Project> requireSoundImport(const std::vector<std::filesystem::path>& files,
                                                   const ImportSettings& settings) {
  auto imported = std::make_unique<Project>();
  Project& project = *imported;
  const auto outcome = importFiles(project, files, settings);
  if (!outcome) {
    require(!outcome.failure().reason.empty(), "a failure without a reason");
    require(project.nodeCount() == 0 && project.nI == 0, "a failed import left something");
    return imported;
  }
  require(!whyNotEncodable(project), "a project that cannot be saved");
  require(project.nodeCount() == outcome->nodes && project.nI == outcome->nodes * dofsPerNode,
          "a wrong count of nodes");
  require(std::ssize(*project.F_I) == project.nI && std::ssize(*project.D_I) == project.nI, "arrays of other lengths");
  require(std::ssize(*project.trussElements) == outcome->trusses, "a wrong count of bars");
  require(std::ssize(*project.beamElements) == outcome->beams, "a wrong count of beams");
  const auto isThere = [&project](std::int64_t node) { return node >= 0 && node < project.nodeCount(); };
  const auto endsAreThere = [&](const auto& element) {
    return isThere(element.startNodeId) && isThere(element.endNodeId);
  };
  require(std::ranges::all_of(*project.trussElements, endsAreThere), "a bar without its node");
  require(std::ranges::all_of(*project.beamElements, endsAreThere), "a beam without its node");

  const auto nodes = inputFolder() / "exported nodes.csv";
  const auto elements = inputFolder() / "exported elements.csv";
  require(!exportNodes(project, nodes) && !exportElements(project, elements), "an import that cannot be exported");
  Project back;
  const auto again = importFiles(back, {elements, nodes}, {});
  require(static_cast<bool>(again), "an export that cannot be imported");
  require(*back.X_I == *project.X_I && *back.F_I == *project.F_I && *back.D_I == *project.D_I, "nodes changed");
  auto bars = *back.trussElements;
  require(bars.size() == project.trussElements->size(), "bars were lost");
  for (std::size_t i = 0; i < bars.size(); ++i) {
    const double stiffness = (*project.trussElements)[i].EAL3;
    if (!std::isnormal(stiffness)) bars[i].EAL3 = stiffness;  // it has too few digits to tell of the modulus
  }
  require(bars == *project.trussElements, "bars changed");
  require(*back.beamElements == *project.beamElements, "beams changed");
  return imported;
}

}  // namespace gavrel
