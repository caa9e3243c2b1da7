#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Factorization/NodeGraph.h"

namespace gavrel {

/// A structure as an ordering sees it.
struct PlacedGraph {
  NodeGraph graph;                  ///< three unknowns a node
  std::vector<double> coordinates;  ///< x, y, z of each node
};

struct NamedGraph {
  std::string name;
  std::function<PlacedGraph()> build;
};

/// Structures of many shapes, and graphs in which coordinates help little or not at all.
[[nodiscard]] std::vector<NamedGraph> listGraphs();

}  // namespace gavrel
