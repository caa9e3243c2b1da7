#pragma once

#include <cstdint>
#include <vector>

namespace gavrel {

/// A graph whose edges all join a vertex on the left to one on the right.
struct BoundaryGraph {
  std::vector<std::int32_t> starts{0};  ///< partners of left vertex v: starts[v] <= k < starts[v + 1]
  std::vector<std::int32_t> partners;   ///< numbers of vertices on the right
  std::int32_t rights = 0;              ///< vertices on the right

  [[nodiscard]] std::int32_t lefts() const { return static_cast<std::int32_t>(starts.size()) - 1; }
};

struct VertexCover {
  std::vector<bool> left;
  std::vector<bool> right;
};

/// The fewest vertices that touch every edge, by a largest matching (König's theorem; Hopcroft, Karp 1973).
[[nodiscard]] VertexCover coverEdges(const BoundaryGraph& graph);

}  // namespace gavrel
