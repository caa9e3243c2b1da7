#pragma once

#include <memory>

#include "CommandLine/Structures/StructureBuilder.h"

namespace gavrel {

/// A square net of cells with one diagonal each, hanging as a paraboloid from its restrained edges. The total load is
/// shared equally by the inner nodes. A negative sag makes it a vault.
struct CableNet {
  double span = 20.0;
  int cells = 10;  ///< along each edge; at least 2
  double sag = 2.0;
  Vector3 totalLoad{0, 0, -100};
  BarProperties bars;

  [[nodiscard]] std::shared_ptr<Project> build() const;
};

}  // namespace gavrel
