#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "Factorization/NodeGraph.h"

namespace gavrel {

/// What an order of elimination does to a graph, vertex by vertex in that order (Davis, Direct Methods for Sparse
/// Linear Systems, 2006, ch. 4).
struct EliminationTree {
  std::vector<std::int32_t> order;   ///< the vertices, first eliminated first: a postorder of the tree
  std::vector<std::int32_t> place;   ///< of each vertex in the order
  std::vector<std::int32_t> parent;  ///< place of the parent of what stands at each place; -1: none
  std::vector<std::int64_t> below;   ///< unknowns in the factor's column at each place, without its own

  /// The tree of a given order, put in postorder.
  [[nodiscard]] static EliminationTree grow(const NodeGraph& graph, std::vector<std::int32_t> order);

  /// Multiplications and additions of a factorization without supernodes.
  [[nodiscard]] double operations(const NodeGraph& graph) const;
};

}  // namespace gavrel
