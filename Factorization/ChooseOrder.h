#pragma once

#include <span>

#include "Factorization/EliminationTree.h"
#include "Factorization/NodeGraph.h"

namespace gavrel {

/// The order of elimination with the fewest operations of those that are worth looking at. `coordinates` holds x, y, z
/// of each of the matrix's blocks, or nothing. Throws std::bad_alloc.
[[nodiscard]] EliminationTree chooseOrder(const NodeGraph& graph, std::span<const double> coordinates);

}  // namespace gavrel
