#pragma once

#include <cstdint>

#include "DataModel/Project.h"

namespace gavrel {

/// Small structures for tests.

struct BarKind {
  bool isCompressionOnly = false;
  bool isNonLinear = false;
};

/// Appends a bar of cross-section 1 between two nodes of the project.
inline void addBar(Project& project, std::int64_t start, std::int64_t end, double youngModulus, BarKind kind = {}) {
  auto& bars = project.trussElements.edit();
  bars.emplace_back(std::ssize(bars), start, end, *project.getNodeCoordinates(start), *project.getNodeCoordinates(end),
                    1.0, youngModulus, kind.isCompressionOnly, kind.isNonLinear);
}

/// Appends a beam with both second moments of area equal to 1.
inline void addBeam(Project& project, std::int64_t start, std::int64_t end, double youngModulus, bool isNonLinear) {
  auto& beams = project.beamElements.edit();
  beams.emplace_back(std::ssize(beams), start, end, *project.getNodeCoordinates(start),
                     *project.getNodeCoordinates(end), 1.0, 1.0, 1.0, youngModulus, youngModulus, isNonLinear);
}

/// Restrains all six degrees of freedom of a node.
inline void clamp(Project& project, std::int64_t node) {
  auto& D = project.D_I.edit();
  for (std::int64_t k = 0; k < dofsPerNode; ++k) D[static_cast<std::size_t>(dofsPerNode * node + k)] = true;
}

}  // namespace gavrel
