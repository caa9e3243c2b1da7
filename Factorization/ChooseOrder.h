#pragma once

#include <atomic>
#include <span>

#include "Factorization/EliminationTree.h"
#include "Factorization/NodeGraph.h"

namespace gavrel {

/// The order of elimination with the fewest operations of those that are worth looking at. `coordinates` holds x, y, z
/// of each of the matrix's blocks, or nothing. Throws std::bad_alloc, and Cancellation when `stop` is set.
[[nodiscard]] EliminationTree chooseOrder(const NodeGraph& graph, std::span<const double> coordinates,
                                          const std::atomic<bool>& stop);

}  // namespace gavrel
