#include <algorithm>
#include <cmath>
#include <cstdint>

#include "DataModel/Solver.h"
#include "Diagnosis/StructureCheck.h"

namespace gavrel {

namespace {

/// With a smallest pivot ratio of at least this, no mechanism can have gone unseen.
constexpr double suspicious = 1e-9;

/// As a fraction of the largest displacement. With a smallest pivot ratio p, a mechanism stretches its bars by about p,
/// a slender structure by about the square root of p.
constexpr double stretching = 1e-8;

/// Numbers between -1 and 1 without a pattern that a structure could have: the fractional parts of the multiples of the
/// golden ratio.
double scatter(std::int64_t i) {
  constexpr double goldenRatio = 1.618033988749895;
  const double multiple = static_cast<double>(i + 1) * goldenRatio;
  return 2 * (multiple - std::floor(multiple)) - 1;
}

/// By how much the bar gets longer, to the first order.
double computeStretch(const TrussElement& truss, const std::vector<double>& U) {
  const auto along = [&](std::int64_t direction) {
    return U[static_cast<std::size_t>(dofsPerNode * truss.startNodeId + direction)] -
           U[static_cast<std::size_t>(dofsPerNode * truss.endNodeId + direction)];
  };
  const double L = length({truss.dXx, truss.dXy, truss.dXz});
  return L > 0 ? (truss.dXx * along(0) + truss.dXy * along(1) + truss.dXz * along(2)) / L : 0;
}

}  // namespace

std::optional<Finding> inspectMovement(const Project& project, const SolveOutcome& outcome,
                                       Finding::Consequence consequence) {
  if (!(outcome.smallestPivotRatio < suspicious) || !project.beamElements->empty()) return std::nullopt;
  const auto copy = project.copy();
  auto& F = copy->F_I.edit();
  for (std::int64_t dof = 0; dof < std::ssize(F); ++dof) {
    const auto i = static_cast<std::size_t>(dof);
    const bool free = dof % dofsPerNode < 3 && i < copy->D_I->size() && !(*copy->D_I)[i];
    F[i] = free ? scatter(dof) : 0;
  }
  if (Solver(*copy).Solve({}, 1).fault) return std::nullopt;
  const auto& U = *copy->U_I;
  const auto farthest = std::ranges::max_element(U, {}, [](double u) { return std::abs(u); }) - U.begin();
  const double limit = stretching * std::abs(U[static_cast<std::size_t>(farthest)]);
  const auto isKept = [&](const TrussElement& truss) {
    return truss.EAL3 == 0 || std::abs(computeStretch(truss, U)) < limit;
  };
  if (!std::ranges::all_of(*project.trussElements, isKept)) return std::nullopt;
  const std::int64_t node = farthest / dofsPerNode;
  return Finding{consequence,
                 "Mechanism",
                 "Nothing holds node " + std::to_string(node) + " in " + describeDirection(farthest) +
                     " against a movement of several nodes together" + describeEnding(consequence) +
                     "brace or support it there.",
                 {node}};
}

}  // namespace gavrel
