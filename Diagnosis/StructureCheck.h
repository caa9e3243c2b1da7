#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "DataModel/Connectivity.h"
#include "DataModel/Project.h"
#include "DataModel/SolveOutcome.h"
#include "Diagnosis/Finding.h"

namespace gavrel {

/// A look at a structure before it is solved, and the solve itself on a copy, which ends nothing.
struct StructureCheck {
  std::vector<Finding> findings;  ///< the worst first
  /// The solved copy, if its solve came to its end: what Solve would have left.
  std::shared_ptr<Project> solved;
  std::vector<double> norms;  ///< what that Solve would have printed
  bool lacksMemory = false;   ///< its solve ended because memory did, which says nothing of the structure

  /// Whether Solve would end the process.
  [[nodiscard]] bool endsProgram() const;

  /// Inspects the structure and, unless that shows that a solve is fatal or vain, solves a copy. `afterStep` hears of
  /// its steps. Prints nothing.
  [[nodiscard]] static StructureCheck inspectAndSolve(const Project& project,
                                                      const Project::StepObserver& afterStep = {});
};

/// What can be seen without a solve. If a solve would index what is not there, one of the findings ends the program.
[[nodiscard]] std::vector<Finding> inspectModel(const Project& project, const Connectivity& connectivity);

/// The connected parts of a structure that its supports leave free to move as rigid bodies.
struct Freedom {
  struct Part {
    std::vector<std::int64_t> nodes;
    int movements = 0;  ///< how many independent ones
  };
  std::vector<Part> parts;    ///< by their lowest node
  bool anyRestraint = false;  ///< of a translation, in the whole structure

  /// From the matrix at rest: a direction without any stiffness counts as held, since the solver gives it some. Only
  /// such movements are looked at as the elements do not resist: the stiffness of a beam follows no turn, nor that of a
  /// bar whose stored extents are not those of its nodes.
  [[nodiscard]] static Freedom examine(const Project& assembled, const Connectivity& connectivity);

  [[nodiscard]] Finding describe(const Project& project, Finding::Consequence consequence) const;
};

/// Loads that the solve of a copy could not answer.
[[nodiscard]] std::vector<Finding> inspectLoads(const Project& solved, const SolveOutcome& outcome);

/// Where the solve of a copy, assembled at the displacements it left, lost its stiffness. If it failed, one of the
/// findings ends the program. `ofLoss`: the consequence where it did not fail.
[[nodiscard]] std::vector<Finding> inspectStiffness(const Project& solved, const SolveOutcome& outcome,
                                                    const Connectivity& connectivity, const Freedom& freedom,
                                                    Finding::Consequence ofLoss);

/// Whether the structure at rest has a movement that stretches no bar, although rounding hid it from the solve. Solves
/// a copy of it under other loads, where the solve tells of a part of stiffness small enough for that.
[[nodiscard]] std::optional<Finding> inspectMovement(const Project& project, const SolveOutcome& outcome,
                                                     Finding::Consequence consequence);

/// What a solve in vain has left over, where nothing else explains it.
[[nodiscard]] Finding lackOfEquilibrium(const Project& solved, const SolveOutcome& outcome);

}  // namespace gavrel
