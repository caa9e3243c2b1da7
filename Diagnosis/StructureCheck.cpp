#include "Diagnosis/StructureCheck.h"

#include <algorithm>

#include "DataModel/Solver.h"

namespace gavrel {

namespace {

using enum Finding::Consequence;

void append(std::vector<Finding>& to, std::vector<Finding> more) {
  to.insert(to.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

void solveCopy(StructureCheck& check, const Project& project, const Connectivity& connectivity,
               const Project::StepObserver& afterStep) {
  const auto copy = project.copy();
  Solver solver(*copy);
  solver.Prepare();
  solver.Assemble();
  const auto freedom = Freedom::examine(*copy, connectivity);

  // Without a load all steps are the same, so one is enough.
  const bool unloaded = std::ranges::count(*project.F_I, 0.0) == std::ssize(*project.F_I);
  auto outcome = solver.Iterate(afterStep, unloaded ? 1 : Project::iterationLimit);
  if (outcome.fault) solver.Assemble();  // without the stiffness that the solver put on diagonals without any
  check.lacksMemory = outcome.fault && outcome.fault->kind == SolveFault::Kind::OutOfMemory;
  auto& findings = check.findings;
  append(findings, inspectLoads(*copy, outcome));
  const auto isUnexplained = [&] {
    return outcome.ranOutOfSteps() && std::ranges::count(findings, NeverConverges, &Finding::consequence) == 0;
  };
  const auto ofLoss = isUnexplained() ? NeverConverges : Meaningless;
  append(findings, inspectStiffness(*copy, outcome, connectivity, freedom, ofLoss));
  if (!outcome.fault && !outcome.weakness && freedom.parts.empty())
    if (auto movement = inspectMovement(project, outcome, ofLoss)) findings.push_back(std::move(*movement));
  if (isUnexplained()) findings.push_back(describeImbalance(*copy, outcome));
  if (outcome.fault || unloaded) return;
  check.solved = copy;
  check.norms = std::move(outcome.norms);
}

}  // namespace

bool StructureCheck::endsProgram() const {
  return std::ranges::count(findings, EndsProgram, &Finding::consequence) > 0;
}

StructureCheck StructureCheck::inspectAndSolve(const Project& project, const Project::StepObserver& afterStep) {
  StructureCheck check;
  const auto connectivity = Connectivity::examine(project);
  check.findings = inspectModel(project, connectivity);
  if (!check.endsProgram()) solveCopy(check, project, connectivity, afterStep);
  std::ranges::stable_sort(check.findings, {}, &Finding::consequence);
  return check;
}

}  // namespace gavrel
