#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>

#include "DataModel/Project.h"
#include "Platform/Console.h"
#include "Platform/Fatal.h"
#include "Platform/NumberText.h"

namespace {

constexpr double zeroPivot = 1e-9;

double norm(const std::vector<double>& vector) {
  double squares = 0;
  for (const double entry : vector) squares += entry * entry;
  return std::sqrt(squares);
}

std::string explain(const CholeskyFault& fault) {
  using Kind = CholeskyFault::Kind;
  const std::string where = describeDof(fault.unknown);
  switch (fault.kind) {
    case Kind::Malformed:
      return "the stiffness matrix is not a square upper triangle with a diagonal, at " + where;
    case Kind::EmptyColumn:
      return "there is no stiffness at " + where + ": no element joins the node";
    case Kind::NotFinite:
      return "the stiffness is " + numberText(fault.value) + " at " + where +
             " (a beam without extent along x, or numbers too large)";
    case Kind::DiagonalNotPositive:
      return "the structure is unstable at " + where + ": its stiffness there is " + numberText(fault.value);
    case Kind::PivotNotPositive:
      return "the structure is unstable at " + where + ": the other unknowns leave it no positive stiffness there";
    case Kind::PivotNotFinite:
      return "the stiffness matrix cannot be factorized at " + where + ": its numbers are too large";
    case Kind::OutOfMemory:
      return "not enough memory to factorize the stiffness matrix";
  }
  return "the stiffness matrix cannot be factorized";
}

}  // namespace

std::string describeDof(std::int64_t dof) {
  constexpr std::array<const char*, dofsPerNode> directions{"translation along x", "translation along y",
                                                            "translation along z", "rotation about x",
                                                            "rotation about y",    "rotation about z"};
  return "node " + std::to_string(dof / dofsPerNode) + ", " + at(directions, dof % dofsPerNode, "the directions");
}

void Project::Solve(const StepObserver& afterStep) {
  auto& U = U_I.edit();
  for (std::int64_t i = 0; i < nI; ++i) at(U, i, "U_I") = 0;
  H_II = CSR(CSR::CreateSparsityPattern(*trussElements, *beamElements, nI));
  cholesky_.emplace();
  warnedOfInstability_ = false;

  double normRoF0F1F = std::numeric_limits<double>::infinity();
  const double normF = norm(*F_I);
  printLine("");
  for (int step = 1; step <= iterationLimit && !(normRoF0F1F < convergenceTolerance); ++step) {
    SolveOneStep(normRoF0F1F, normF);
    printLine(numberText(normRoF0F1F));
    if (afterStep) afterStep(step, normRoF0F1F);
  }
  cholesky_.reset();
}

void Project::SolveOneStep(double& normRoF0F1F, double normF) {
  R_I = *F_I;
  H_II.clear();
  for (TrussElement& truss : trussElements.edit()) truss.makeAssembly(R_I, H_II, *D_I, *U_I, vv_J);
  for (BeamElement& beam : beamElements.edit()) beam.makeAssembly(R_I, H_II, *D_I, *U_I, vv_J);

  normRoF0F1F = norm(R_I) / normF;
  if (normRoF0F1F < convergenceTolerance) return;

  FillHessianDiagonal();
  LinearSolve();
  auto& U = U_I.edit();
  for (std::int64_t i = 0; i < nI; ++i) at(U, i, "U_I") += at(dU_I, i, "dU_I");
}

void Project::FillHessianDiagonal() {
  if (H_II.values.empty()) fatal("the stiffness matrix holds no values: the structure has no elements");
  const double replacement = H_II.values.front();
  for (std::int64_t i = 0; i < nI; ++i) {
    const std::int64_t k = at(H_II.starts, i, "starts");
    if (k >= std::ssize(H_II.values)) {
      fatal("index " + std::to_string(k) + " is outside the stored stiffness values, at " + describeDof(i) +
            ": no element joins the node");
    }
    double& diagonal = at(H_II.values, k, "values");
    if (std::abs(diagonal) < zeroPivot) diagonal = replacement;
  }
}

void Project::LinearSolve() {
  if (nI > std::numeric_limits<std::int32_t>::max())
    fatal(std::to_string(nI) + " degrees of freedom do not fit into 32 bits");
  if (std::ssize(R_I) < nI) fatalIndex("R_I", nI - 1, std::ssize(R_I));
  if (std::ssize(dU_I) < nI) fatalIndex("dU_I", nI - 1, std::ssize(dU_I));

  SparseCholesky once;
  SparseCholesky& cholesky = cholesky_ ? *cholesky_ : once;
  const SymmetricMatrix matrix{nI, dofsPerNode, H_II.starts, H_II.indices, H_II.values};
  if (const auto fault = cholesky.factorize(matrix)) fatal(explain(*fault));
  if (const auto weakest = cholesky.weakestUnknown(); weakest && !warnedOfInstability_) {
    warnedOfInstability_ = true;
    printWarning("the structure may be unstable at " + describeDof(*weakest) +
                 ": what holds it there is lost in rounding, and the displacements mean nothing");
  }
  if (const auto fault = cholesky.solve(R_I, dU_I)) fatal(explain(*fault));
  cholesky.dropFactor();
}
