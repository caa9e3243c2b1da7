#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "DataModel/CSR.h"
#include "Platform/Fatal.h"

namespace gavrel {

/// The first `perNode` degrees of freedom of an element's two nodes.
template <std::size_t perNode>
struct ElementDofs {
  std::array<std::int64_t, 2 * perNode> I_v{};  ///< their global numbers: those of the start, then those of the end
  std::array<double, perNode> U{};              ///< displacement of the start minus that of the end

  /// U_I: six entries per node. Node numbers that are too large or without entries are fatal.
  ElementDofs(std::int64_t startNodeId, std::int64_t endNodeId, const std::vector<double>& U_I) {
    const std::int64_t start = firstDof(startNodeId);
    const std::int64_t end = firstDof(endNodeId);
    for (std::size_t i = 0; i < perNode; ++i) {
      const auto k = static_cast<std::int64_t>(i);
      I_v[i] = start + k;
      I_v[i + perNode] = end + k;
      U[i] = at(U_I, start + k, "U_I") - at(U_I, end + k, "U_I");
    }
  }
};

}  // namespace gavrel
