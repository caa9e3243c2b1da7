#pragma once

#include "CommandLine/Structures/Lattice.h"

namespace gavrel {

/// The lattice of non-linear bars for all measurements, pulled along x so strongly that a solve needs several steps.
inline Lattice benchmarkLattice(int nodesPerEdge) {
  Lattice lattice;
  lattice.nodesPerEdge = nodesPerEdge;
  lattice.totalLoad = {4000.0 * nodesPerEdge * nodesPerEdge, 0, 0};
  lattice.bars.isNonLinear = true;
  return lattice;
}

}  // namespace gavrel
