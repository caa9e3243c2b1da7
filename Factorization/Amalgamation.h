#pragma once

#include <cstdint>
#include <vector>

#include "Factorization/EliminationTree.h"

namespace gavrel {

/// A group of vertices that are eliminated together.
struct Group {
  std::vector<std::int32_t> vertices;  ///< in the order of their elimination
  std::int64_t columns;                ///< their unknowns
  std::int64_t rows;                   ///< unknowns below them
  std::int32_t parent;                 ///< -1: none
};

/// Groups vertices whose columns have the same rows, then merges children into parents where the zeros that this stores
/// cost less than a front of their own. Children come before parents, each subtree in one piece.
[[nodiscard]] std::vector<Group> groupVertices(const NodeGraph& graph, const EliminationTree& tree);

}  // namespace gavrel
