#pragma once

#include <memory>

#include "CommandLine/Structures/StructureBuilder.h"

namespace gavrel {

/// A four-legged lattice tower with crossed diagonals on its faces and a square with one diagonal at every level. The
/// feet are restrained, the total load is shared equally by the four top nodes.
struct Tower {
  double height = 30.0;
  int sections = 6;  ///< at least 1
  double baseWidth = 6.0;
  double topWidth = 2.0;
  bool strutDiagonals = false;  ///< the crossed diagonals carry no tension
  Vector3 totalLoad{50, 0, -200};
  BarProperties bars;

  [[nodiscard]] std::shared_ptr<Project> build() const;
};

}  // namespace gavrel
