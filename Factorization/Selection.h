#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <vector>

#include "Factorization/SymmetricMatrix.h"

namespace gavrel {

/// The part of a stored matrix on which a factorization has to work. Storage that follows a mesh holds many exact
/// zeros: a bar uses three of a node's six unknowns. An unknown without any coupling is solved by one division; of the
/// others, whole blocks between two groups of unknowns are kept as soon as one entry in them is not zero, so that the
/// selection survives changes of the values within the blocks.
struct Selection {
  std::vector<std::int64_t> unknowns;   ///< numbers of the coupled unknowns, ascending; the selection's own numbering
  std::vector<std::int64_t> uncoupled;  ///< numbers of the others
  std::vector<std::int64_t> starts;     ///< the selected lower triangle in compressed columns
  std::vector<std::int32_t> rows;       ///< row of each selected entry, in the selection's numbering
  std::vector<std::int64_t> sources;    ///< where in the stored values each selected entry stands

  /// Selects the entries that are not zero, and those that `previous` selected. Throws Cancellation when `stop`
  /// is set.
  [[nodiscard]] static Selection select(const SymmetricMatrix& matrix, const Selection& previous,
                                        const std::atomic<bool>& stop);

  /// Whether all values outside the selection are zero, so that it stands for the matrix.
  [[nodiscard]] bool covers(const SymmetricMatrix& matrix) const;
};

}  // namespace gavrel
