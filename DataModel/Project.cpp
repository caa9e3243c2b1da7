#include "DataModel/Project.h"

#include <array>
#include <new>
#include <utility>

#include "DataModel/Solver.h"
#include "Platform/Console.h"
#include "Platform/Fatal.h"
#include "Platform/NumberText.h"

namespace gavrel {

namespace {

/// Position of the first of a node's three consecutive entries in an array of the given length; none when they end
/// before.
std::optional<std::size_t> findFirstOfThree(std::int64_t nodeID, std::size_t length) {
  const std::int64_t last = checkedProduct(3, nodeID, 2, "a node number is too large to number its entries");
  if (last >= static_cast<std::int64_t>(length)) return std::nullopt;
  if (nodeID < 0) fatalIndex("the nodes", nodeID, static_cast<std::int64_t>(length) / 3);
  return static_cast<std::size_t>(last - 2);
}

std::optional<Vector3> readVector(const std::vector<double>& array, std::int64_t nodeID) {
  const auto i = findFirstOfThree(nodeID, array.size());
  if (!i) return std::nullopt;
  return Vector3{array[*i], array[*i + 1], array[*i + 2]};
}

void fatalIf(const std::optional<SolveFault>& fault) {
  if (!fault) return;
  if (fault->kind == SolveFault::Kind::OutOfMemory) throw std::bad_alloc();
  fatal(fault->what);
}

void warnIfUnstable(std::optional<std::int64_t> dof) {
  if (!dof) return;
  printWarning("the structure may be unstable at " + describeDof(*dof) +
               ": its stiffness there is lost in rounding, and the displacements mean nothing");
}

}  // namespace

std::string describeDirection(std::int64_t dof) {
  constexpr std::array<const char*, dofsPerNode> directions{"translation along x", "translation along y",
                                                            "translation along z", "rotation about x",
                                                            "rotation about y",    "rotation about z"};
  return at(directions, dof % dofsPerNode, "the directions");
}

std::string describeDof(std::int64_t dof) {
  return "node " + std::to_string(dof / dofsPerNode) + ", " + describeDirection(dof);
}

Project::Project(std::string name_, std::vector<TrussElement> trussElements_, std::vector<BeamElement> beamElements_,
                 double magnify_)
    : name(*this, std::move(name_)),
      trussElements(*this, std::move(trussElements_)),
      beamElements(*this, std::move(beamElements_)),
      X_I(*this),
      U_I(*this),
      F_I(*this),
      D_I(*this),
      magnify(magnify_) {}

std::shared_ptr<Project> Project::copy() const {
  auto copy = std::make_shared<Project>(*name, *trussElements, *beamElements, magnify);
  copy->X_I.edit() = *X_I;
  copy->U_I.edit() = *U_I;
  copy->dU_I = dU_I;
  copy->F_I.edit() = *F_I;
  copy->R_I = R_I;
  copy->D_I.edit() = *D_I;
  copy->nI = nI;
  copy->vv_J = vv_J;
  return copy;
}

void Project::addNode(const Vector3& coordinates) {
  auto& X = X_I.edit();
  X.insert(X.end(), {coordinates.x, coordinates.y, coordinates.z});
  U_I.edit().insert(U_I->end(), dofsPerNode, 0.0);
  dU_I.insert(dU_I.end(), dofsPerNode, 0.0);
  F_I.edit().insert(F_I->end(), dofsPerNode, 0.0);
  D_I.edit().insert(D_I->end(), dofsPerNode, false);
  vv_J.insert(vv_J.end(), dofsPerNode, 0);
  nI += dofsPerNode;
}

void Project::setLoadAndRestraint(std::int64_t nodeID, const Vector3& load, bool rx, bool ry, bool rz) {
  const std::int64_t i = firstDof(nodeID);
  if (i >= nI) return;
  auto& D = D_I.edit();
  auto& F = F_I.edit();
  const auto set = [&](std::int64_t dof, bool restrained, double force) {
    at(D, dof, "D_I") = restrained;
    at(F, dof, "F_I") = restrained ? 0.0 : force;
  };
  set(i, rx, load.x);
  set(i + 1, ry, load.y);
  set(i + 2, rz, load.z);
}

std::optional<Vector3> Project::getNodeCoordinates(std::int64_t nodeID) const {
  return readVector(*X_I, nodeID);
}

std::optional<Vector3> Project::getNodeDisplacement(std::int64_t nodeID) const {
  return readVector(*U_I, nodeID);
}

std::optional<Vector3> Project::getNodeForce(std::int64_t nodeID) const {
  return readVector(*F_I, nodeID);
}

std::optional<Project::Restraints> Project::getNodeRestraints(std::int64_t nodeID) const {
  const auto i = findFirstOfThree(nodeID, D_I->size());
  if (!i) return std::nullopt;
  return Restraints{(*D_I)[*i], (*D_I)[*i + 1], (*D_I)[*i + 2]};
}

void Project::Solve(const StepObserver& afterStep) {
  Solver solver(*this);
  solver.Prepare();
  printLine("");
  solver.Assemble();
  bool warned = false;
  const auto outcome = solver.Iterate([&](int step, double normRoF0F1F) {
    if (!warned) warnIfUnstable(solver.weakestDof());
    warned = warned || solver.weakestDof();
    printLine(numberText(normRoF0F1F));
    if (afterStep) afterStep(step, normRoF0F1F);
  });
  fatalIf(outcome.fault);
}

void Project::SolveOneStep(double& normRoF0F1F, double normF) {
  Solver solver(*this);
  fatalIf(solver.SolveOneStep(normRoF0F1F, normF));
  warnIfUnstable(solver.weakestDof());
}

void Project::FillHessianDiagonal() {
  fatalIf(Solver(*this).FillHessianDiagonal());
}

void Project::LinearSolve() {
  Solver solver(*this);
  fatalIf(solver.LinearSolve());
  warnIfUnstable(solver.weakestDof());
}

void Project::takeSolution(Project&& solved) {
  trussElements.edit() = std::move(solved.trussElements.edit());
  beamElements.edit() = std::move(solved.beamElements.edit());
  U_I.edit() = std::move(solved.U_I.edit());
  dU_I = std::move(solved.dU_I);
  R_I = std::move(solved.R_I);
  H_II = std::move(solved.H_II);
}

std::vector<std::int64_t> Project::findBarsOut() const {
  std::vector<std::int64_t> out;
  for (std::size_t i = 0; i < trussElements->size(); ++i)
    if ((*trussElements)[i].isOut()) out.push_back(static_cast<std::int64_t>(i));
  return out;
}

}  // namespace gavrel
