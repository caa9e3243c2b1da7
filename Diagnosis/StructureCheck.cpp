#include "Diagnosis/StructureCheck.h"

#include <algorithm>

namespace {

void append(std::vector<Finding>& to, std::vector<Finding> more) {
  to.insert(to.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

bool endsProgram(const std::vector<Finding>& findings) {
  return std::ranges::count(findings, Finding::Consequence::EndsProgram, &Finding::consequence) > 0;
}

}  // namespace

StructureCheck StructureCheck::of(const Project& project, const Project::StepObserver& afterStep) {
  StructureCheck check;
  const auto connectivity = Connectivity::of(project);
  check.findings = inspectModel(project, connectivity);
  if (endsProgram(check.findings)) return check;

  const auto copy = project.copy();
  copy->PrepareSolve();
  copy->Assemble();
  if (auto lacking = inspectFirstValue(*copy)) check.findings.push_back(std::move(*lacking));
  if (endsProgram(check.findings)) return check;
  auto loose = inspectSupports(*copy, connectivity.partOf);

  // Without a load all steps are the same, and the first one tells of everything.
  const bool unloaded = std::ranges::count(*project.F_I, 0.0) == std::ssize(*project.F_I);
  auto outcome = copy->trySolve(afterStep, unloaded ? 1 : Project::iterationLimit);
  const bool failedAtRest = outcome.fault ? outcome.fault->step <= 1 : outcome.weakestDof.has_value();
  if (loose) {
    if (outcome.fault && failedAtRest) loose->consequence = Finding::Consequence::EndsProgram;
    check.findings.push_back(std::move(*loose));
  }
  if (!loose || !failedAtRest) append(check.findings, inspectOutcome(*copy, outcome));
  if (!outcome.fault && !unloaded) {
    check.solved = copy;
    check.norms = std::move(outcome.norms);
  }
  return check;
}
