#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "DataModel/Connectivity.h"
#include "DataModel/Project.h"
#include "DataModel/SolveOutcome.h"
#include "Diagnosis/Finding.h"

namespace gavrel {

/// The check of a structure: an inspection before the solve, and the solve itself on a copy, which never ends the
/// process.
struct StructureCheck {
  std::vector<Finding> findings;  ///< the worst first
  /// The solved copy, unless its solve was stopped by a fault: the state that Solve would have left.
  std::shared_ptr<Project> solved;
  std::vector<double> norms;  ///< the norms that Solve would have printed
  bool lacksMemory = false;   ///< the solve stopped for lack of memory, which says nothing about the structure

  /// Whether Solve would end the process.
  [[nodiscard]] bool endsProgram() const;

  /// Inspects the structure and, unless that shows that a solve would be fatal, solves a copy. `afterStep` is called
  /// after each of its steps. Prints nothing.
  [[nodiscard]] static StructureCheck inspectAndSolve(const Project& project,
                                                      const Project::StepObserver& afterStep = {});
};

/// Findings that need no solve. If a solve would use an index outside an array, one of the findings ends the program.
[[nodiscard]] std::vector<Finding> inspectModel(const Project& project, const Connectivity& connectivity);

/// The connected parts of a structure that its supports leave free to move as rigid bodies.
struct Freedom {
  struct Part {
    std::vector<std::int64_t> nodes;
    int movements = 0;  ///< number of independent rigid-body movements
  };
  std::vector<Part> parts;    ///< by their lowest node
  bool anyRestraint = false;  ///< of a translation, in the whole structure

  /// From the matrix of the undeformed structure: a direction without any stiffness counts as held, since the solver
  /// gives it some. Only movements that the elements do not resist are considered: a beam resists rigid rotations, and
  /// so does a bar whose stored extents are not those of its nodes.
  [[nodiscard]] static Freedom examine(const Project& assembled, const Connectivity& connectivity);

  [[nodiscard]] Finding describe(const Project& project, Finding::Consequence consequence) const;
};

/// Loads that the elements do not carry, from the residual that the solve of a copy left.
[[nodiscard]] std::vector<Finding> inspectLoads(const Project& solved, const SolveOutcome& outcome);

/// Where the structure lost its stiffness in the solve of a copy, which is assembled at the final displacements. If the
/// solve failed, one of the findings ends the program. `ofLoss`: the consequence of a loss if it did not fail.
[[nodiscard]] std::vector<Finding> inspectStiffness(const Project& solved, const SolveOutcome& outcome,
                                                    const Connectivity& connectivity, const Freedom& freedom,
                                                    Finding::Consequence ofLoss);

/// A movement of the undeformed structure that stretches no bar and that rounding hid from the solve. If the smallest
/// pivot ratio of the solve is small enough for that, solves a copy under other loads to find it.
[[nodiscard]] std::optional<Finding> inspectMovement(const Project& project, const SolveOutcome& outcome,
                                                     Finding::Consequence consequence);

/// The forces that remain after a solve that did not converge, where no other finding explains them.
[[nodiscard]] Finding describeImbalance(const Project& solved, const SolveOutcome& outcome);

}  // namespace gavrel
