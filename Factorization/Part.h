#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "Factorization/NodeGraph.h"

namespace gavrel {

enum class Side : std::uint8_t { Low, High, Separator };

/// A piece of a graph, in which its vertices have numbers of their own.
struct Part {
  std::vector<std::int32_t> vertices;    ///< their numbers in the whole graph
  std::vector<std::int32_t> starts{0};   ///< neighbours of vertex v: starts[v] <= k < starts[v + 1]
  std::vector<std::int32_t> neighbours;  ///< within the part
  std::vector<std::int32_t> unknowns;    ///< of each vertex
  std::vector<double> coordinates;       ///< x, y, z of each vertex, from -1 to 1

  /// The whole graph.
  [[nodiscard]] static Part whole(const NodeGraph& graph, std::span<const double> coordinates);

  /// What lies on one side of a cut.
  [[nodiscard]] Part take(Side wanted, std::span<const Side> sides) const;

  [[nodiscard]] std::int32_t size() const { return static_cast<std::int32_t>(vertices.size()); }
  [[nodiscard]] std::span<const std::int32_t> neighboursAt(std::int32_t vertex) const {
    return std::span(neighbours).subspan(starts[vertex], starts[vertex + 1] - starts[vertex]);
  }
};

}  // namespace gavrel
