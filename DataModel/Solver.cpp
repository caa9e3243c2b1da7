#include "DataModel/Solver.h"

#include <cmath>
#include <limits>
#include <string>

#include "Platform/Fatal.h"
#include "Platform/NumberText.h"

namespace gavrel {

namespace {

double norm(const std::vector<double>& vector) {
  double squares = 0;
  for (const double entry : vector) squares += entry * entry;
  return std::sqrt(squares);
}

SolveFault explainFault(const CholeskyFault& fault) {
  using Kind = CholeskyFault::Kind;
  using Of = SolveFault::Kind;
  const std::string where = describeDof(fault.unknown);
  const auto there = [&](Of kind, const std::string& what) { return SolveFault{kind, what, fault.unknown}; };
  switch (fault.kind) {
    case Kind::Malformed:
      return there(Of::NotFinite, "the stiffness matrix is not a square upper triangle with a diagonal, at " + where);
    case Kind::EmptyColumn:
      return there(Of::NoStiffness, "there is no stiffness at " + where + ": no element joins the node");
    case Kind::NotFinite:
      return there(Of::NotFinite, "the stiffness is " + numberText(fault.value) + " at " + where +
                                      " (a beam without extent along x, or numbers too large)");
    case Kind::DiagonalNotPositive:
      return there(Of::NotPositive,
                   "the structure is unstable at " + where + ": its stiffness there is " + numberText(fault.value));
    case Kind::PivotNotPositive:
      return there(Of::Unstable, "the structure is unstable at " + where +
                                     ": no positive stiffness is left there once the other unknowns are eliminated");
    case Kind::PivotNotFinite:
      return there(Of::NotFinite,
                   "the stiffness matrix cannot be factorized at " + where + ": its numbers are too large");
    case Kind::OutOfMemory:
      return {Of::OutOfMemory, "not enough memory to factorize the stiffness matrix"};
    case Kind::Cancelled:
      break;  // nobody cancels here
  }
  return {Of::NotFinite, "the stiffness matrix cannot be factorized"};
}

}  // namespace

SolveOutcome Solver::Solve(const Project::StepObserver& afterStep, int limit) {
  Prepare();
  Assemble();
  return Iterate(afterStep, limit);
}

void Solver::Prepare() {
  auto& U = project_.U_I.edit();
  for (std::int64_t i = 0; i < project_.nI; ++i) at(U, i, "U_I") = 0;
  project_.H_II = CSR(CSR::CreateSparsityPattern(*project_.trussElements, *project_.beamElements, project_.nI));
}

void Solver::Assemble() {
  Project& p = project_;
  p.R_I = *p.F_I;
  p.H_II.clear();
  for (TrussElement& truss : p.trussElements.edit()) truss.makeAssembly(p.R_I, p.H_II, *p.D_I, *p.U_I, p.vv_J);
  for (BeamElement& beam : p.beamElements.edit()) beam.makeAssembly(p.R_I, p.H_II, *p.D_I, *p.U_I, p.vv_J);
}

SolveOutcome Solver::Iterate(const Project::StepObserver& afterStep, int limit) {
  SolveOutcome outcome;
  double normRoF0F1F = std::numeric_limits<double>::infinity();
  const double normF = norm(*project_.F_I);
  for (int step = 1; step <= limit && !(normRoF0F1F < Project::convergenceTolerance); ++step) {
    outcome.fault = step == 1 ? advance(normRoF0F1F, normF) : SolveOneStep(normRoF0F1F, normF);
    if (outcome.fault) {
      outcome.fault->step = step;
      break;
    }
    outcome.norms.push_back(normRoF0F1F);
    if (step == 1) outcome.smallestPivotRatio = cholesky_.smallestPivotRatio();
    const auto weakest = weakestDof();
    if (weakest && !outcome.weakness) outcome.weakness = {step, *weakest, project_.findBarsOut()};
    if (outcome.weakness) outcome.weakness->lasts = weakest.has_value();
    if (afterStep) afterStep(step, normRoF0F1F);
  }
  outcome.converged = !outcome.fault && normRoF0F1F < Project::convergenceTolerance;
  return outcome;
}

Solver::MaybeFault Solver::SolveOneStep(double& normRoF0F1F, double normF) {
  Assemble();
  return advance(normRoF0F1F, normF);
}

Solver::MaybeFault Solver::advance(double& normRoF0F1F, double normF) {
  normRoF0F1F = norm(project_.R_I) / normF;
  if (normRoF0F1F < Project::convergenceTolerance) return std::nullopt;

  if (auto fault = FillHessianDiagonal()) return fault;
  if (auto fault = LinearSolve()) return fault;
  auto& U = project_.U_I.edit();
  for (std::int64_t i = 0; i < project_.nI; ++i) at(U, i, "U_I") += at(project_.dU_I, i, "dU_I");
  return std::nullopt;
}

Solver::MaybeFault Solver::FillHessianDiagonal() {
  CSR& H = project_.H_II;
  if (H.values.empty())
    return SolveFault{SolveFault::Kind::NoElements,
                      "the stiffness matrix holds no values: the structure has no elements"};
  const double replacement = H.values.front();
  for (std::int64_t i = 0; i < project_.nI; ++i) {
    const std::int64_t k = at(H.starts, i, "starts");
    if (k >= std::ssize(H.values))
      return SolveFault{SolveFault::Kind::NoStiffness,
                        "index " + std::to_string(k) + " is outside the stored stiffness values, at " + describeDof(i) +
                            ": no element joins the node",
                        i};
    double& diagonal = at(H.values, k, "values");
    if (std::abs(diagonal) < Project::zeroPivot) diagonal = replacement;
  }
  return std::nullopt;
}

Solver::MaybeFault Solver::LinearSolve() {
  const std::int64_t nI = project_.nI;
  if (nI > std::numeric_limits<std::int32_t>::max())
    return SolveFault{SolveFault::Kind::TooLarge, std::to_string(nI) + " degrees of freedom do not fit into 32 bits"};
  const auto& R = project_.R_I;
  auto& dU = project_.dU_I;
  if (std::ssize(R) < nI) fatalIndex("R_I", nI - 1, std::ssize(R));
  if (std::ssize(dU) < nI) fatalIndex("dU_I", nI - 1, std::ssize(dU));

  const CSR& H = project_.H_II;
  if (const auto fault = cholesky_.factorize({nI, dofsPerNode, H.starts, H.indices, H.values, *project_.X_I}))
    return explainFault(*fault);
  if (const auto fault = cholesky_.solve(R, dU)) return explainFault(*fault);
  cholesky_.dropFactor();
  return std::nullopt;
}

}  // namespace gavrel
