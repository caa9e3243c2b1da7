#pragma once

#include <cstdint>
#include <vector>

#include "DataModel/BeamElement.h"
#include "DataModel/TrussElement.h"

namespace gavrel {

/// What one element between the nodes 0 and 1 adds to an otherwise empty structure whose unknowns are all free.
struct AssembledElement {
  static constexpr std::size_t size = 12;

  std::vector<double> R_I = std::vector<double>(size);
  CSR H_II;

  template <class Element>
  AssembledElement(Element& element, const std::vector<double>& U_I) {
    TrussElement joint;
    joint.startNodeId = 1;
    H_II = CSR(CSR::CreateSparsityPattern({joint}, {}, size));
    std::vector<std::int64_t> vv_J(size);
    element.makeAssembly(R_I, H_II, std::vector<bool>(size), U_I, vv_J);
  }

  /// Entry of the symmetric matrix.
  [[nodiscard]] double H(std::size_t row, std::size_t column) const {
    if (row > column) std::swap(row, column);
    for (auto k = H_II.starts[row]; k < H_II.starts[row + 1]; ++k) {
      const auto place = static_cast<std::size_t>(k);
      if (H_II.indices[place] == static_cast<std::int32_t>(column)) return H_II.values[place];
    }
    return 0;
  }
};

}  // namespace gavrel
