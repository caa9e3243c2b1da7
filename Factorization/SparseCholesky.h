#pragma once

#include <memory>
#include <optional>
#include <span>

#include "Factorization/SymmetricMatrix.h"

namespace gavrel {

/// Solves symmetric positive definite systems by sparse Cholesky factorization (multifrontal).
///
/// The analysis of the matrix's structure is kept between calls of `factorize` and repeated only when entries that were
/// zero have become non-zero; all matrices given to one object must share their stored structure. The factor is kept
/// until `dropFactor`, the next `factorize` or the object's end.
class SparseCholesky {
 public:
  /// `threads` 0: as many as the machine has. The results do not depend on it.
  explicit SparseCholesky(int threads = 0);
  SparseCholesky(SparseCholesky&&) noexcept;
  SparseCholesky& operator=(SparseCholesky&&) noexcept;
  ~SparseCholesky();

  /// Checks the matrix and does the analysis if it is needed. `factorize` calls it.
  [[nodiscard]] std::optional<CholeskyFault> analyse(const SymmetricMatrix& matrix);

  /// Computes the factor, or returns why and at which unknown that fails (there is no factor then).
  [[nodiscard]] std::optional<CholeskyFault> factorize(const SymmetricMatrix& matrix);

  /// Writes the solution of matrix · x = b into `x`, for `count` right-hand sides: their columns, of one entry for each
  /// unknown, stand behind each other. Needs a factor.
  [[nodiscard]] std::optional<CholeskyFault> solve(std::span<const double> b, std::span<double> x,
                                                   std::int32_t count = 1);

  /// Ends the factorization that another thread is at, or else the next one, with the fault Cancelled.
  void cancel();

  /// The unknown whose pivot is no larger than rounding errors, if there is one: the matrix is singular to working
  /// precision although it could be factorized, and the solution is meaningless.
  [[nodiscard]] std::optional<std::int64_t> weakestUnknown() const;

  /// The smallest ratio of a pivot to its diagonal entry in the last factorization; 1 if all unknowns are uncoupled.
  [[nodiscard]] double smallestPivotRatio() const;

  /// Multiplications and additions of a factorization, after the analysis.
  [[nodiscard]] double operations() const;

  /// Threads that a large factorization uses, if there is room for them.
  [[nodiscard]] int threads() const;

  /// Gives the factor's memory back, which `factorize` uses again otherwise.
  void dropFactor();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace gavrel
