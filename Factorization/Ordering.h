#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "Factorization/Cancellation.h"
#include "Factorization/NodeGraph.h"

namespace gavrel {

/// Orders of elimination that keep the factor small; each lists the vertices of the graph, first eliminated first.
/// Nested dissection (George 1973): a separator that cuts the graph in two is eliminated after both parts.

/// Cuts by METIS. Empty if it has not enough memory.
[[nodiscard]] std::vector<std::int32_t> dissectByMetis(const NodeGraph& graph);

/// Cuts by planes, given x, y, z of each vertex, all finite. Throws Cancellation when `stop` is set.
[[nodiscard]] std::vector<std::int32_t> dissectByCoordinates(const NodeGraph& graph,
                                                             std::span<const double> coordinates,
                                                             const std::atomic<bool>& stop);

/// Orders the vertices of a small part by least degree (Tinney, Walker 1967), given the neighbours outside the part
/// that are eliminated after it. `part` is put in order. `numbers` is work space for each vertex, -1 between uses.
void orderByLeastDegree(const NodeGraph& graph, std::span<std::int32_t> part, std::vector<std::int32_t>& numbers);

}  // namespace gavrel
