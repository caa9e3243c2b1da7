#include <metis.h>

#include <type_traits>

#include "Factorization/Ordering.h"

namespace gavrel {

static_assert(std::is_same_v<idx_t, std::int32_t>);

std::vector<std::int32_t> dissectByMetis(const NodeGraph& graph) {
  idx_t size = graph.size();
  if (size < 2) return std::vector<std::int32_t>(graph.blocks.size(), 0);
  std::vector<idx_t> weights;
  weights.reserve(graph.blocks.size());
  for (std::int32_t vertex = 0; vertex < size; ++vertex) weights.push_back(graph.unknowns(vertex));
  std::vector<idx_t> order(weights.size());
  std::vector<idx_t> places(weights.size());
  // METIS writes to none of the graph's arrays.
  auto* starts = const_cast<idx_t*>(graph.starts.data());
  auto* neighbours = const_cast<idx_t*>(graph.neighbours.data());
  if (METIS_NodeND(&size, starts, neighbours, weights.data(), nullptr, order.data(), places.data()) != METIS_OK)
    order.clear();
  return order;
}

}  // namespace gavrel
