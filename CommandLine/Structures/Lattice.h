#pragma once

#include <memory>

#include "CommandLine/Structures/StructureBuilder.h"

namespace gavrel {

/// A cube of nodesPerEdge^3 nodes with bars along the axes and both diagonals of every square face of its cells. The
/// face x = 0 is restrained, the total load is shared equally by the nodes of the opposite face.
struct Lattice {
  int nodesPerEdge = 5;
  double spacing = 1.0;
  Vector3 totalLoad{0, 0, -100};
  BarProperties bars;

  [[nodiscard]] std::shared_ptr<Project> build() const;
};

}  // namespace gavrel
