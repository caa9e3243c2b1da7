#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace gavrel {

/// Why a solve cannot go on.
struct SolveFault {
  enum class Kind {
    NoElements,   ///< the matrix holds no values
    NoStiffness,  ///< no element joins a node
    NotFinite,    ///< a stiffness is not finite, or becomes so in the factorization
    NotPositive,  ///< a direction's own stiffness is not positive
    Unstable,     ///< the other directions leave one no positive stiffness
    TooLarge,     ///< more unknowns than 32 bits number
    OutOfMemory
  };

  Kind kind = Kind::NoElements;
  std::string what;                      ///< one line for people
  std::optional<std::int64_t> dof = {};  ///< where
  int step = 0;                          ///< in which step of a solve; 0 outside of one
};

/// The first step that left a direction nothing but rounding errors, so that its displacements mean nothing.
struct Weakness {
  int step = 0;
  std::int64_t dof = 0;
  std::vector<std::int64_t> trussesOut = {};  ///< positions of the compression-only bars that were out in that step
  bool lasts = false;                         ///< whether the last step that moved anything was such a one, too
};

/// How far a solve came.
struct SolveOutcome {
  std::vector<double> norms = {};         ///< relative residual norm of each step
  std::optional<SolveFault> fault = {};   ///< what ended it before its time
  std::optional<Weakness> weakness = {};  ///< where the structure may be unstable but for rounding errors
  bool converged = false;
  /// The least part of a direction's stiffness that the elimination of the others left in the first step. Slender
  /// structures have small parts, mechanisms those of rounding errors.
  double leastPart = 1;

  /// Whether it did all its steps for nothing.
  [[nodiscard]] bool isInVain() const { return !fault && !converged; }
};

}  // namespace gavrel
