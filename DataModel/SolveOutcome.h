#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace gavrel {

/// Why a solve stopped.
struct SolveFault {
  enum class Kind {
    NoElements,   ///< the matrix holds no values
    NoStiffness,  ///< no element joins a node
    NotFinite,    ///< a stiffness is not finite, or becomes so in the factorization
    NotPositive,  ///< a diagonal entry of the matrix is not positive
    Unstable,     ///< a pivot is not positive once the unknowns before it are eliminated
    TooLarge,     ///< more unknowns than a 32-bit number counts
    OutOfMemory
  };

  Kind kind = Kind::NoElements;
  std::string what;                      ///< one line for the user
  std::optional<std::int64_t> dof = {};  ///< the degree of freedom where it happened
  int step = 0;                          ///< the step of the solve; 0 outside of a solve
};

/// The first step in which a pivot was no larger than rounding errors, so that its displacements are meaningless.
struct Weakness {
  int step = 0;
  std::int64_t dof = 0;
  std::vector<std::int64_t> trussesOut = {};  ///< positions of the compression-only bars that were out in that step
  bool lasts = false;                         ///< whether this holds for the last step that moved anything, too
};

/// How a solve ended.
struct SolveOutcome {
  std::vector<double> norms = {};         ///< relative residual norm of each step
  std::optional<SolveFault> fault = {};   ///< what stopped it, if anything did
  std::optional<Weakness> weakness = {};  ///< where the matrix was singular except for rounding errors
  bool converged = false;
  /// The smallest ratio of a pivot to its diagonal entry in the first step. In slender structures it is small, in
  /// mechanisms it is that of rounding errors.
  double smallestPivotRatio = 1;

  /// Whether it did all its steps without converging.
  [[nodiscard]] bool ranOutOfSteps() const { return !fault && !converged; }
};

}  // namespace gavrel
