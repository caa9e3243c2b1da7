#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace gavrel {

/// A symmetric matrix, given as its lower triangle in compressed columns: column c holds the entries
/// starts[c] <= k < starts[c + 1], with rows indices[k] in ascending order, the diagonal first.
struct SymmetricMatrix {
  std::int64_t size = 0;                 ///< rows and columns
  std::int64_t blockSize = 1;            ///< consecutive unknowns that belong together (the six of a node)
  std::span<const std::int64_t> starts;  ///< size + 1 entries
  std::span<const std::int32_t> indices;
  std::span<const double> values;  ///< as many as indices
};

/// Why a matrix cannot be factorized.
struct CholeskyFault {
  enum class Kind {
    Malformed,            ///< the arrays do not describe a lower triangle with a diagonal; unknown: the column
    EmptyColumn,          ///< no entry at all, not even a diagonal
    NotFinite,            ///< an entry is NaN or infinite
    DiagonalNotPositive,  ///< the diagonal is zero or negative before any elimination
    PivotNotPositive,     ///< the diagonal became zero or negative when the unknowns before it were eliminated
    PivotNotFinite,
    OutOfMemory
  };
  Kind kind;
  std::int64_t unknown;  ///< number of the row and column
  double value;          ///< the offending entry, where there is one
};

/// The part of a stored matrix on which a factorization has to work. Storage that follows a mesh holds many exact
/// zeros: a bar uses three of a node's six unknowns. An unknown without any coupling is solved by one division. Of the
/// others, a block between two groups of unknowns is kept whole as soon as one entry in it is not zero, so that the
/// selection stays valid when values within the blocks change.
struct CholeskySelection {
  std::vector<std::int64_t> unknowns;   ///< numbers of the coupled unknowns, ascending; the selection's own numbering
  std::vector<std::int64_t> uncoupled;  ///< numbers of the others
  std::vector<std::int64_t> starts;     ///< the selected lower triangle in compressed columns
  std::vector<std::int64_t> rows;       ///< row of each selected entry, in the selection's numbering
  std::vector<std::int64_t> sources;    ///< where in the stored values each selected entry stands

  /// Selects the entries that are not zero, and those that `previous` selected.
  [[nodiscard]] static CholeskySelection select(const SymmetricMatrix& matrix, const CholeskySelection& previous);

  /// Copies the selected values into `selected` (one for each source). False if a value outside the selection is not
  /// zero, so that the selection does not represent the matrix.
  [[nodiscard]] bool gather(const SymmetricMatrix& matrix, std::span<double> selected) const;
};

}  // namespace gavrel
