#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <new>
#include <string>
#include <utility>

#include "DataModel/Project.h"
#include "Platform/Console.h"
#include "Platform/Fatal.h"
#include "Platform/NumberText.h"

namespace {

double norm(const std::vector<double>& vector) {
  double squares = 0;
  for (const double entry : vector) squares += entry * entry;
  return std::sqrt(squares);
}

SolveFault faultOf(const CholeskyFault& fault) {
  using Kind = CholeskyFault::Kind;
  using Of = SolveFault::Kind;
  const std::string where = describeDof(fault.unknown);
  const auto at = [&](Of kind, const std::string& what) { return SolveFault{kind, what, fault.unknown}; };
  switch (fault.kind) {
    case Kind::Malformed:
      return at(Of::NotFinite, "the stiffness matrix is not a square upper triangle with a diagonal, at " + where);
    case Kind::EmptyColumn:
      return at(Of::NoStiffness, "there is no stiffness at " + where + ": no element joins the node");
    case Kind::NotFinite:
      return at(Of::NotFinite, "the stiffness is " + numberText(fault.value) + " at " + where +
                                   " (a beam without extent along x, or numbers too large)");
    case Kind::DiagonalNotPositive:
      return at(Of::NotPositive,
                "the structure is unstable at " + where + ": its stiffness there is " + numberText(fault.value));
    case Kind::PivotNotPositive:
      return at(Of::Unstable,
                "the structure is unstable at " + where + ": the other unknowns leave it no positive stiffness there");
    case Kind::PivotNotFinite:
      return at(Of::NotFinite, "the stiffness matrix cannot be factorized at " + where + ": its numbers are too large");
    case Kind::OutOfMemory:
      return {Of::OutOfMemory, "not enough memory to factorize the stiffness matrix"};
  }
  return {Of::NotFinite, "the stiffness matrix cannot be factorized"};
}

void endIf(const std::optional<SolveFault>& fault) {
  if (!fault) return;
  if (fault->kind == SolveFault::Kind::OutOfMemory) throw std::bad_alloc();
  fatal(fault->what);
}

void warnIfUnstable(std::optional<std::int64_t> dof) {
  if (!dof) return;
  printWarning("the structure may be unstable at " + describeDof(*dof) +
               ": what holds it there is lost in rounding, and the displacements mean nothing");
}

}  // namespace

std::string directionOf(std::int64_t dof) {
  constexpr std::array<const char*, dofsPerNode> directions{"translation along x", "translation along y",
                                                            "translation along z", "rotation about x",
                                                            "rotation about y",    "rotation about z"};
  return at(directions, dof % dofsPerNode, "the directions");
}

std::string describeDof(std::int64_t dof) {
  return "node " + std::to_string(dof / dofsPerNode) + ", " + directionOf(dof);
}

void Project::Solve(const StepObserver& afterStep) {
  PrepareSolve();
  printLine("");
  bool warned = false;
  const auto outcome = iterate(
      [&](int step, double normRoF0F1F) {
        if (!std::exchange(warned, warned || weakestDof_.has_value())) warnIfUnstable(weakestDof_);
        printLine(numberText(normRoF0F1F));
        if (afterStep) afterStep(step, normRoF0F1F);
      },
      iterationLimit);
  endIf(outcome.fault);
}

SolveOutcome Project::trySolve(const StepObserver& afterStep, int limit) {
  PrepareSolve();
  return iterate(afterStep, limit);
}

void Project::takeSolution(Project&& solved) {
  trussElements.edit() = std::move(solved.trussElements.edit());
  beamElements.edit() = std::move(solved.beamElements.edit());
  U_I.edit() = std::move(solved.U_I.edit());
  dU_I = std::move(solved.dU_I);
  R_I = std::move(solved.R_I);
  H_II = std::move(solved.H_II);
}

std::vector<std::int64_t> Project::positionsOut() const {
  std::vector<std::int64_t> out;
  for (std::size_t i = 0; i < trussElements->size(); ++i)
    if ((*trussElements)[i].isOut()) out.push_back(static_cast<std::int64_t>(i));
  return out;
}

void Project::PrepareSolve() {
  auto& U = U_I.edit();
  for (std::int64_t i = 0; i < nI; ++i) at(U, i, "U_I") = 0;
  H_II = CSR(CSR::CreateSparsityPattern(*trussElements, *beamElements, nI));
}

SolveOutcome Project::iterate(const StepObserver& afterStep, int limit) {
  cholesky_.emplace();
  weakestDof_.reset();
  SolveOutcome outcome;
  double normRoF0F1F = std::numeric_limits<double>::infinity();
  const double normF = norm(*F_I);
  for (int step = 1; step <= limit && !(normRoF0F1F < convergenceTolerance); ++step) {
    outcome.fault = trySolveOneStep(normRoF0F1F, normF);
    if (outcome.fault) {
      outcome.fault->step = step;
      break;
    }
    outcome.norms.push_back(normRoF0F1F);
    if (step == 1) outcome.leastPart = cholesky_->leastPart();
    if (weakestDof_ && !outcome.weakness) outcome.weakness = {step, *weakestDof_, positionsOut()};
    if (afterStep) afterStep(step, normRoF0F1F);
  }
  outcome.converged = !outcome.fault && normRoF0F1F < convergenceTolerance;
  if (outcome.weakness) outcome.weakness->lasts = weakestDof_.has_value();
  cholesky_.reset();
  return outcome;
}

void Project::SolveOneStep(double& normRoF0F1F, double normF) {
  weakestDof_.reset();
  endIf(trySolveOneStep(normRoF0F1F, normF));
  warnIfUnstable(weakestDof_);
}

void Project::FillHessianDiagonal() {
  endIf(tryFillHessianDiagonal());
}

void Project::LinearSolve() {
  weakestDof_.reset();
  endIf(tryLinearSolve());
  warnIfUnstable(weakestDof_);
}

void Project::Assemble() {
  R_I = *F_I;
  H_II.clear();
  for (TrussElement& truss : trussElements.edit()) truss.makeAssembly(R_I, H_II, *D_I, *U_I, vv_J);
  for (BeamElement& beam : beamElements.edit()) beam.makeAssembly(R_I, H_II, *D_I, *U_I, vv_J);
}

Project::MaybeFault Project::trySolveOneStep(double& normRoF0F1F, double normF) {
  Assemble();
  normRoF0F1F = norm(R_I) / normF;
  if (normRoF0F1F < convergenceTolerance) return std::nullopt;

  if (auto fault = tryFillHessianDiagonal()) return fault;
  if (auto fault = tryLinearSolve()) return fault;
  auto& U = U_I.edit();
  for (std::int64_t i = 0; i < nI; ++i) at(U, i, "U_I") += at(dU_I, i, "dU_I");
  return std::nullopt;
}

Project::MaybeFault Project::tryFillHessianDiagonal() {
  if (H_II.values.empty())
    return SolveFault{SolveFault::Kind::NoElements,
                      "the stiffness matrix holds no values: the structure has no elements"};
  const double replacement = H_II.values.front();
  for (std::int64_t i = 0; i < nI; ++i) {
    const std::int64_t k = at(H_II.starts, i, "starts");
    if (k >= std::ssize(H_II.values))
      return SolveFault{SolveFault::Kind::NoStiffness,
                        "index " + std::to_string(k) + " is outside the stored stiffness values, at " + describeDof(i) +
                            ": no element joins the node",
                        i};
    double& diagonal = at(H_II.values, k, "values");
    if (std::abs(diagonal) < zeroPivot) diagonal = replacement;
  }
  return std::nullopt;
}

Project::MaybeFault Project::tryLinearSolve() {
  if (nI > std::numeric_limits<std::int32_t>::max())
    return SolveFault{SolveFault::Kind::TooLarge, std::to_string(nI) + " degrees of freedom do not fit into 32 bits"};
  if (std::ssize(R_I) < nI) fatalIndex("R_I", nI - 1, std::ssize(R_I));
  if (std::ssize(dU_I) < nI) fatalIndex("dU_I", nI - 1, std::ssize(dU_I));

  SparseCholesky once;
  SparseCholesky& cholesky = cholesky_ ? *cholesky_ : once;
  const SymmetricMatrix matrix{nI, dofsPerNode, H_II.starts, H_II.indices, H_II.values};
  if (const auto fault = cholesky.factorize(matrix)) return faultOf(*fault);
  weakestDof_ = cholesky.weakestUnknown();
  if (const auto fault = cholesky.solve(R_I, dU_I)) return faultOf(*fault);
  cholesky.dropFactor();
  return std::nullopt;
}
