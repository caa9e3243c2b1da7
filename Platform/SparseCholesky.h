#pragma once

#include <memory>
#include <optional>
#include <span>

#include "Platform/CholeskySelection.h"

namespace gavrel {

/// Solves symmetric positive definite systems by sparse Cholesky factorization (CHOLMOD, supernodal).
///
/// The analysis of the matrix's structure is kept between calls of `factorize` and made again only when entries that it
/// took for zero no longer are; all matrices given to one object must share their stored structure. The factor lives
/// until `dropFactor`, the next `factorize` or the object's end.
class SparseCholesky {
 public:
  SparseCholesky();
  SparseCholesky(SparseCholesky&&) noexcept;
  SparseCholesky& operator=(SparseCholesky&&) noexcept;
  ~SparseCholesky();

  /// Checks the matrix and makes or renews the analysis where needed. `factorize` calls it.
  [[nodiscard]] std::optional<CholeskyFault> analyse(const SymmetricMatrix& matrix);

  /// Computes the factor, or tells which unknown stands in the way (there is no factor then).
  [[nodiscard]] std::optional<CholeskyFault> factorize(const SymmetricMatrix& matrix);

  /// Writes the solution of matrix · x = b into `x`; both have one entry for each unknown. Needs a factor.
  [[nodiscard]] std::optional<CholeskyFault> solve(std::span<const double> b, std::span<double> x);

  /// The unknown of which the elimination of the others left nothing but rounding errors, if there is one: the matrix
  /// is singular to working precision, although its factorization came to an end, and the solution means nothing.
  [[nodiscard]] std::optional<std::int64_t> weakestUnknown() const;

  /// The least part of a diagonal that the elimination of the other unknowns left, of the last factorization; 1 if all
  /// are uncoupled.
  [[nodiscard]] double leastPart() const;

  void dropFactor();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace gavrel
