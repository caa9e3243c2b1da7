#pragma once

#include <cstdint>
#include <span>

namespace gavrel {

/// A symmetric matrix, given as its lower triangle in compressed columns: column c holds the entries
/// starts[c] <= k < starts[c + 1], with rows indices[k] in ascending order, the diagonal first.
struct SymmetricMatrix {
  std::int64_t size = 0;                 ///< rows and columns
  std::int64_t blockSize = 1;            ///< consecutive unknowns that belong together (the six of a node)
  std::span<const std::int64_t> starts;  ///< size + 1 entries
  std::span<const std::int32_t> indices;
  std::span<const double> values;            ///< as many as indices
  std::span<const double> coordinates = {};  ///< x, y, z of each block, which help to order them; may be empty
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
    OutOfMemory,
    Cancelled
  };
  Kind kind;
  std::int64_t unknown;  ///< number of the row and column
  double value;          ///< the offending entry, where there is one
};

}  // namespace gavrel
