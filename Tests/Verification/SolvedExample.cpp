#include "Tests/Verification/SolvedExample.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "DataModel/ProjectFile.h"

namespace gavrel {

double SolvedExample::U(std::int64_t node, std::int64_t direction) const {
  return project->U_I->at(static_cast<std::size_t>(dofsPerNode * node + direction));
}

Vector3 SolvedExample::coordinates(std::int64_t node) const {
  return *project->getNodeCoordinates(node);
}

const TrussElement& SolvedExample::bar(std::int64_t a, std::int64_t b) const {
  const auto joins = [&](const TrussElement& truss) {
    return (truss.startNodeId == a && truss.endNodeId == b) || (truss.startNodeId == b && truss.endNodeId == a);
  };
  const auto found = std::ranges::find_if(*project->trussElements, joins);
  if (found == project->trussElements->end())
    throw std::runtime_error("no bar between nodes " + std::to_string(a) + " and " + std::to_string(b));
  return *found;
}

SolvedExample solveExample(const std::string& name) {
  auto read = readProject(GAVREL_EXAMPLES "/" + name + ".json");
  if (!read) throw std::runtime_error(name + ": " + read.failure().reason);
  SolvedExample solved{*read, {}};
  testing::internal::CaptureStdout();
  solved.project->Solve([&](int, double norm) { solved.norms.push_back(norm); });
  testing::internal::GetCapturedStdout();
  return solved;
}

}  // namespace gavrel
