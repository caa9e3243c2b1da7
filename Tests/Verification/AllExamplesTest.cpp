#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "DataModel/ProjectFile.h"
#include "Platform/FileBytes.h"
#include "Tests/Verification/SolvedExample.h"

namespace {

using Forces = std::vector<std::array<double, 3>>;

std::vector<std::string> exampleNames() {
  std::vector<std::string> names;
  for (const auto& file : std::filesystem::directory_iterator(GAVREL_EXAMPLES))
    if (file.path().extension() == ".json") names.push_back(file.path().stem());
  std::ranges::sort(names);
  return names;
}

std::array<double, 3> components(const Vector3& v) {
  return {v.x, v.y, v.z};
}

/// Forces of the bars on the nodes. Their directions come from the nodes' coordinates and displacements, not from the
/// differences that the element records keep, so that a record that does not fit its nodes shows.
Forces barForcesOnNodes(const SolvedExample& solved) {
  Forces forces(static_cast<std::size_t>(solved.project->nodeCount()));
  for (const TrussElement& truss : *solved.project->trussElements) {
    auto chord = components(solved.coordinates(truss.endNodeId) - solved.coordinates(truss.startNodeId));
    if (truss.isNonLinear)
      for (std::size_t k = 0; k < chord.size(); ++k) {
        const auto direction = static_cast<std::int64_t>(k);
        chord[k] += solved.U(truss.endNodeId, direction) - solved.U(truss.startNodeId, direction);
      }
    const double tension = truss.axialForce() / std::hypot(chord[0], chord[1], chord[2]);
    for (std::size_t k = 0; k < chord.size(); ++k) {
      forces.at(static_cast<std::size_t>(truss.startNodeId))[k] += tension * chord[k];
      forces.at(static_cast<std::size_t>(truss.endNodeId))[k] -= tension * chord[k];
    }
  }
  return forces;
}

TEST(AllExamples, AreFilesAsTheProgramWritesThem) {
  const auto names = exampleNames();
  ASSERT_THAT(names, testing::IsSupersetOf({"single-bar", "snap-through", "cantilever"}));
  for (const auto& name : names) {
    SCOPED_TRACE(name);
    const auto bytes = readFile(GAVREL_EXAMPLES "/" + name + ".json");
    ASSERT_TRUE(bytes) << bytes.failure().reason;
    const auto project = decodeProject(*bytes);
    ASSERT_TRUE(project) << project.failure().reason;
    const auto again = encodeProject(**project);
    ASSERT_TRUE(again) << again.failure().reason;
    EXPECT_TRUE(*again == *bytes) << "reading and writing changes the file";
  }
}

/// Each free node is in equilibrium under its load and its bars, which makes the reactions balance the loads: every
/// bar pulls at both ends alike. Bars alone must manage, since beams contribute stiffness but no internal force; the
/// cantilever has no bars.
TEST(AllExamples, AreInEquilibriumByTheirBars) {
  for (const auto& name : exampleNames()) {
    SCOPED_TRACE(name);
    if (name == "cantilever") continue;
    const SolvedExample solved = solveExample(name);
    const Project& project = *solved.project;
    EXPECT_LT(solved.norms.back(), Project::convergenceTolerance);

    const Forces bars = barForcesOnNodes(solved);
    double loads = 0;
    double residual = 0;
    for (std::size_t node = 0; node < bars.size(); ++node)
      for (std::size_t k = 0; k < 3; ++k) {
        const std::size_t dof = static_cast<std::size_t>(dofsPerNode) * node + k;
        const double load = (*project.F_I)[dof];
        loads = std::hypot(loads, load);
        if (!(*project.D_I)[dof]) residual = std::hypot(residual, load + bars[node][k]);
      }
    EXPECT_GT(loads, 0);
    EXPECT_LT(residual, 1e-5 * loads);
  }
}

}  // namespace
