#include "CommandLine/SolveResult.h"

#include <utility>

#include "DataModel/ProjectFile.h"

namespace gavrel {

namespace {

/// The element whose axial force, times `sign`, is largest and above zero.
SolveResult::Extreme largestForce(const Project& project, double sign) {
  SolveResult::Extreme largest;
  for (std::size_t i = 0; i < project.trussElements->size(); ++i) {
    const double force = (*project.trussElements)[i].axialForce();
    if (sign * force > sign * largest.value) largest = {static_cast<std::int64_t>(i), force};
  }
  return largest;
}

}  // namespace

SolveResult::Extreme SolveResult::largestDisplacement() const {
  Extreme largest;
  const auto& U = *project.U_I;
  for (std::int64_t node = 0; node < project.nodeCount(); ++node) {
    const auto i = static_cast<std::size_t>(node * dofsPerNode);
    const double size = length({U[i], U[i + 1], U[i + 2]});
    if (size > largest.value) largest = {node, size};
  }
  return largest;
}

SolveResult::Extreme SolveResult::largestTension() const {
  return largestForce(project, 1);
}

SolveResult::Extreme SolveResult::largestCompression() const {
  return largestForce(project, -1);
}

void SolveResult::write(JsonWriter& json) const {
  const auto lastStep = [this](const std::vector<double>& array) {
    return std::span(array).first(std::min(array.size(), static_cast<std::size_t>(project.nI)));
  };
  json.beginObject();
  json.key("name");
  json.value(std::string_view(*project.name));
  json.key("converged");
  json.value(converged());
  json.key("norms");
  json.table(norms, 1);
  json.key("U_I");
  json.table(lastStep(*project.U_I), dofsPerNode);
  json.key("dU_I");
  json.table(lastStep(project.dU_I), dofsPerNode);
  json.key("R_I");
  json.table(lastStep(project.R_I), dofsPerNode);
  json.key("trussElements");
  writeElements(json, *project.trussElements);
  json.key("beamElements");
  writeElements(json, *project.beamElements);
  json.end();
}

}  // namespace gavrel
