#include "CommandLine/ModelFacts.h"

#include <algorithm>

namespace gavrel {

namespace {

std::optional<ModelFacts::Extents> measureExtents(const Project& project) {
  if (project.nodeCount() == 0) return std::nullopt;
  const Vector3 first = *project.getNodeCoordinates(0);
  ModelFacts::Extents extents{first, first};
  for (std::int64_t node = 1; node < project.nodeCount(); ++node) {
    const Vector3 place = *project.getNodeCoordinates(node);
    extents.least = {std::min(extents.least.x, place.x), std::min(extents.least.y, place.y),
                     std::min(extents.least.z, place.z)};
    extents.greatest = {std::max(extents.greatest.x, place.x), std::max(extents.greatest.y, place.y),
                        std::max(extents.greatest.z, place.z)};
  }
  return extents;
}

}  // namespace

ModelFacts ModelFacts::gather(const Project& project) {
  ModelFacts facts;
  const auto& trusses = *project.trussElements;
  facts.name = *project.name;
  facts.nodes = project.nodeCount();
  facts.trusses = std::ssize(trusses);
  facts.compressionOnlyTrusses = std::ranges::count(trusses, true, &TrussElement::isCompressionOnly);
  facts.nonLinearTrusses = std::ranges::count(trusses, true, &TrussElement::isNonLinear);
  facts.beams = std::ssize(*project.beamElements);
  facts.extents = measureExtents(project);

  const auto& D = *project.D_I;
  const auto& F = *project.F_I;
  const auto dofs = static_cast<std::size_t>(dofsPerNode * facts.nodes);
  facts.restrainedDofs = std::count(D.begin(), D.begin() + static_cast<std::ptrdiff_t>(std::min(D.size(), dofs)), true);
  for (std::size_t i = 0; i < std::min(F.size(), dofs); ++i) {
    if (F[i] == 0) continue;
    ++facts.loadedDofs;
    if (i < D.size() && D[i]) ++facts.loadedRestrainedDofs;
    const auto direction = i % dofsPerNode;
    if (direction == 0) facts.totalLoad.x += F[i];
    if (direction == 1) facts.totalLoad.y += F[i];
    if (direction == 2) facts.totalLoad.z += F[i];
  }

  facts.connectivity = Connectivity::examine(project);
  facts.arrayLengths = ArrayLengths::check(project);
  return facts;
}

}  // namespace gavrel
