#include "Factorization/NodeGraph.h"

#include <algorithm>
#include <limits>
#include <new>
#include <numeric>
#include <utility>

namespace gavrel {

NodeGraph NodeGraph::build(const Selection& selection, std::int64_t blockSize) {
  NodeGraph graph;
  const auto count = static_cast<std::int32_t>(selection.unknowns.size());
  std::vector<std::int32_t> vertices(count);
  for (std::int32_t i = 0; i < count; ++i) {
    const auto block = static_cast<std::int32_t>(selection.unknowns[i] / blockSize);
    if (graph.blocks.empty() || graph.blocks.back() != block) {
      if (i > 0) graph.firstUnknown.push_back(i);
      graph.blocks.push_back(block);
    }
    vertices[i] = graph.size() - 1;
  }
  if (count > 0) graph.firstUnknown.push_back(count);

  // The neighbours behind each vertex, ascending.
  std::vector<std::int64_t> laterStarts{0};
  std::vector<std::int32_t> later;
  std::vector<std::int32_t> lastSeen(graph.blocks.size(), -1);
  for (std::int32_t vertex = 0; vertex < graph.size(); ++vertex) {
    lastSeen[vertex] = vertex;
    const auto first = std::ssize(later);
    for (auto k = selection.starts[graph.firstUnknown[vertex]]; k < selection.starts[graph.firstUnknown[vertex + 1]];
         ++k) {
      const std::int32_t other = vertices[selection.rows[k]];
      if (std::exchange(lastSeen[other], vertex) != vertex) later.push_back(other);
    }
    std::sort(later.begin() + first, later.end());
    laterStarts.push_back(std::ssize(later));
  }

  if (later.size() > std::numeric_limits<std::int32_t>::max() / 2) throw std::bad_alloc();

  // Each gets those before it first.
  const auto forEachPair = [&](auto&& visit) {
    for (std::int32_t vertex = 0; vertex < graph.size(); ++vertex)
      for (auto k = laterStarts[vertex]; k < laterStarts[vertex + 1]; ++k) visit(vertex, later[k]);
  };
  std::vector<std::int32_t> place(graph.blocks.size() + 1);
  forEachPair([&](std::int32_t a, std::int32_t b) { ++place[a], ++place[b]; });
  std::exclusive_scan(place.begin(), place.end(), place.begin(), 0);
  graph.starts = place;
  graph.neighbours.resize(place.back());
  forEachPair([&](std::int32_t a, std::int32_t b) {
    graph.neighbours[place[a]++] = b;
    graph.neighbours[place[b]++] = a;
  });
  return graph;
}

}  // namespace gavrel
