#include "Factorization/Part.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace gavrel {

Part Part::whole(const NodeGraph& graph, std::span<const double> coordinates) {
  Part part;
  part.vertices.resize(graph.blocks.size());
  std::iota(part.vertices.begin(), part.vertices.end(), 0);
  part.starts = graph.starts;
  part.neighbours = graph.neighbours;
  part.unknowns.reserve(graph.blocks.size());
  for (std::int32_t vertex = 0; vertex < graph.size(); ++vertex) part.unknowns.push_back(graph.unknowns(vertex));
  // Scaled, so that sums of squares neither overflow nor vanish.
  double largest = 0;
  for (const double x : coordinates) largest = std::max(largest, std::abs(x));
  part.coordinates.reserve(coordinates.size());
  for (const double x : coordinates) part.coordinates.push_back(largest > 0 ? x / largest : 0);
  return part;
}

Part Part::take(Side wanted, std::span<const Side> sides) const {
  std::vector<std::int32_t> newNumber(vertices.size());
  std::int32_t count = 0;
  std::int64_t mostNeighbours = 0;
  for (std::int32_t vertex = 0; vertex < size(); ++vertex) {
    if (sides[vertex] != wanted) continue;
    newNumber[vertex] = count++;
    mostNeighbours += starts[vertex + 1] - starts[vertex];
  }
  Part part;
  part.vertices.reserve(count);
  part.starts.reserve(count + 1);
  part.unknowns.reserve(count);
  part.coordinates.reserve(3 * std::size_t(count));
  part.neighbours.reserve(mostNeighbours);
  for (std::int32_t vertex = 0; vertex < size(); ++vertex) {
    if (sides[vertex] != wanted) continue;
    part.vertices.push_back(vertices[vertex]);
    part.unknowns.push_back(unknowns[vertex]);
    const auto place = coordinates.begin() + 3 * std::ptrdiff_t{vertex};
    part.coordinates.insert(part.coordinates.end(), place, place + 3);
    for (const std::int32_t other : neighboursAt(vertex))
      if (sides[other] == wanted) part.neighbours.push_back(newNumber[other]);
    part.starts.push_back(static_cast<std::int32_t>(part.neighbours.size()));
  }
  return part;
}

}  // namespace gavrel
