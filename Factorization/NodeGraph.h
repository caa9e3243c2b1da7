#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "Factorization/Selection.h"

namespace gavrel {

/// The graph of the blocks of coupled unknowns: one vertex for each block, one edge for each pair that shares entries.
struct NodeGraph {
  std::vector<std::int32_t> starts{0};        ///< neighbours of vertex v: starts[v] <= k < starts[v + 1]
  std::vector<std::int32_t> neighbours;       ///< ascending, without v itself
  std::vector<std::int32_t> firstUnknown{0};  ///< of each vertex, in the numbering of the selection; and their number
  std::vector<std::int32_t> blocks;           ///< the matrix's block that each vertex stands for

  /// Throws std::bad_alloc, also if the neighbours are more than 32 bits count.
  [[nodiscard]] static NodeGraph build(const Selection& selection, std::int64_t blockSize);

  [[nodiscard]] std::int32_t size() const { return static_cast<std::int32_t>(blocks.size()); }
  [[nodiscard]] std::int32_t unknowns(std::int32_t vertex) const {
    return firstUnknown[vertex + 1] - firstUnknown[vertex];
  }
  [[nodiscard]] std::span<const std::int32_t> neighboursAt(std::int32_t vertex) const {
    return std::span(neighbours).subspan(starts[vertex], starts[vertex + 1] - starts[vertex]);
  }
};

}  // namespace gavrel
