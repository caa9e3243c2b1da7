#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Why a solve cannot go on.
struct SolveFault {
  enum class Kind {
    NoElements,     ///< the matrix holds no values
    NoStiffness,    ///< no element joins a node
    NotFinite,      ///< a stiffness is not finite, or becomes so in the factorization
    NotPositive,    ///< a direction's own stiffness is not positive
    Unstable,       ///< the other directions leave one no positive stiffness
    OutOfResources  ///< memory, or more unknowns than 32 bits number
  };

  Kind kind = Kind::NoElements;
  std::string what;                      ///< one line for people
  std::optional<std::int64_t> dof = {};  ///< where
  int step = 0;                          ///< in which step of a solve; 0 outside of one
};

/// How far a solve came.
struct SolveOutcome {
  std::vector<double> norms = {};               ///< relative residual norm of each step
  std::optional<SolveFault> fault = {};         ///< what ended it before its time
  std::optional<std::int64_t> weakestDof = {};  ///< where the structure may be unstable but for rounding errors
};
