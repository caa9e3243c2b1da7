#pragma once

#include <cstdint>
#include <optional>

#include "DataModel/Project.h"
#include "DataModel/SolveOutcome.h"
#include "Factorization/SparseCholesky.h"

namespace gavrel {

/// One solve of a project: creates the project's matrix, does the steps on its arrays, and keeps the factorization's
/// analysis from one step to the next. Prints nothing, and returns a SolveFault for a structure that cannot be
/// factorized instead of ending the process.
///
/// The project must outlive its solver, and its elements, restraints and number of nodes must not change meanwhile.
class Solver {
 public:
  using MaybeFault = std::optional<SolveFault>;

  explicit Solver(Project& project) : project_(project) {}

  /// The whole solve: Prepare, Assemble, Iterate.
  [[nodiscard]] SolveOutcome Solve(const Project::StepObserver& afterStep = {}, int limit = Project::iterationLimit);

  /// Zero displacement and an empty matrix with the structure's pattern. Elements that name unknown nodes, and fewer
  /// displacements than `nI`, are fatal.
  void Prepare();

  /// Residual and matrix at U_I. Arrays with less than `nI` entries are fatal.
  void Assemble();

  /// Does steps until the residual is below the tolerance, `limit` steps are done or one fails. The first one takes
  /// residual and matrix as they were assembled at U_I.
  [[nodiscard]] SolveOutcome Iterate(const Project::StepObserver& afterStep = {}, int limit = Project::iterationLimit);

  /// The steps of a solve and their parts, as described at those of the same name in Project.
  [[nodiscard]] MaybeFault SolveOneStep(double& normRoF0F1F, double normF);
  [[nodiscard]] MaybeFault FillHessianDiagonal();
  [[nodiscard]] MaybeFault LinearSolve();

  /// The degree of freedom whose pivot in the last factorization was no larger than rounding errors, if any.
  [[nodiscard]] std::optional<std::int64_t> weakestDof() const { return cholesky_.weakestUnknown(); }

 private:
  MaybeFault advance(double& normRoF0F1F, double normF);

  Project& project_;
  SparseCholesky cholesky_;
};

}  // namespace gavrel
