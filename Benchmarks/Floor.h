#pragma once

#include "DataModel/CSR.h"

namespace gavrel {

/// The time of CHOLMOD alone for the same structure, given the assembled matrix with three unknowns a node.
struct Floor {
  double analysis = 0;
  double factorization = 0;
  double solve = 0;  ///< all in seconds

  [[nodiscard]] static Floor measure(const CSR& H_II);
};

}  // namespace gavrel
