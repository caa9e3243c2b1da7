#pragma once

#include <memory>

#include "CommandLine/Structures/StructureBuilder.h"

namespace gavrel {

/// A Schwedler dome: a spherical cap of ribs and rings with crossed diagonals. The lowest ring is restrained, the total
/// load is shared equally by the nodes above it.
struct Dome {
  double span = 30.0;
  double rise = 6.0;  ///< at most half the span
  int rings = 4;      ///< at least 1
  int segments = 12;  ///< at least 3
  Vector3 totalLoad{0, 0, -500};
  BarProperties bars;

  [[nodiscard]] std::shared_ptr<Project> build() const;
};

}  // namespace gavrel
