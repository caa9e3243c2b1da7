#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "DataModel/Connectivity.h"
#include "DataModel/Project.h"
#include "Diagnosis/Finding.h"

/// A look at a structure before it is solved, and the solve itself on a copy, which ends nothing.
struct StructureCheck {
  std::vector<Finding> findings;
  /// The solved copy, if its solve came to its end: what Solve would have left.
  std::shared_ptr<Project> solved;
  std::vector<double> norms;  ///< what that Solve would have printed

  /// Inspects the structure and, unless that shows that a solve is fatal or vain, solves a copy. `afterStep` hears of
  /// its steps. Prints nothing.
  [[nodiscard]] static StructureCheck of(const Project& project, const Project::StepObserver& afterStep = {});
};

/// What can be seen without a matrix: nodes, elements, loads.
[[nodiscard]] std::vector<Finding> inspectModel(const Project& project, const Connectivity& connectivity);

/// What the supports leave free of the rigid movements of each connected part, from the matrix at rest: a direction
/// without any stiffness counts as held, since the solver gives it some. The stiffness of a beam does not follow a
/// turn, so that of parts with beams only translations are looked at.
[[nodiscard]] std::optional<Finding> inspectSupports(const Project& assembled, const std::vector<std::int64_t>& partOf);

/// Whether the matrix at rest has a first stored value for the solver to lend.
[[nodiscard]] std::optional<Finding> inspectFirstValue(const Project& assembled);

/// What the solve of a copy has shown, after which the copy is as the solve left it.
[[nodiscard]] std::vector<Finding> inspectOutcome(const Project& solved, const SolveOutcome& outcome);
