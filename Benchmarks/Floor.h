#pragma once

#include "DataModel/CSR.h"

namespace gavrel {

/// What CHOLMOD alone needs for the same structure: the matrix with three unknowns a node, handed over ready made.
struct Floor {
  double analysis = 0;
  double factorization = 0;
  double solve = 0;  ///< all in seconds

  [[nodiscard]] static Floor measure(const CSR& H_II);
};

}  // namespace gavrel
