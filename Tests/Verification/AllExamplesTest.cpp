#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "DataModel/ProjectFile.h"
#include "Platform/FileBytes.h"
#include "Tests/Verification/SolvedExample.h"

using namespace gavrel;

namespace {

using Forces = std::vector<std::array<double, 3>>;

std::array<double, 3> components(const Vector3& v) {
  return {v.x, v.y, v.z};
}

/// Forces of the bars on the nodes. Their directions come from the nodes' coordinates and displacements, not from the
/// differences that the element records keep, so that a record that does not fit its nodes shows.
Forces barForcesOnNodes(const SolvedExample& solved) {
  Forces forces(static_cast<std::size_t>(solved.project->nodeCount()));
  for (const TrussElement& truss : *solved.project->trussElements) {
    const auto [start, end] = std::pair{truss.startNodeId, truss.endNodeId};
    auto chord = components(solved.coordinates(end) - solved.coordinates(start));
    for (std::int64_t k = 0; truss.isNonLinear && k < 3; ++k)
      chord.at(static_cast<std::size_t>(k)) += solved.U(end, k) - solved.U(start, k);
    const double tension = truss.axialForce() / std::hypot(chord[0], chord[1], chord[2]);
    for (std::size_t k = 0; k < chord.size(); ++k) {
      forces.at(static_cast<std::size_t>(start))[k] += tension * chord[k];
      forces.at(static_cast<std::size_t>(end))[k] -= tension * chord[k];
    }
  }
  return forces;
}

/// Each free node is in equilibrium under its load and its bars, which makes the reactions balance the loads: every
/// bar pulls at both ends alike. Bars alone must manage, since beams contribute stiffness but no internal force; the
/// cantilever has no bars.
TEST(AllExamples, AreAsTheProgramWritesThemAndInEquilibriumByTheirBars) {
  int examples = 0;
  for (const auto& file : std::filesystem::directory_iterator(GAVREL_EXAMPLES)) {
    if (file.path().extension() != ".json") continue;
    ++examples;
    const std::string name = file.path().stem();
    SCOPED_TRACE(name);
    const std::string text = *readFile(file.path());
    EXPECT_TRUE(*encodeProject(**decodeProject(text)) == text) << "reading and writing changes the file";
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
  EXPECT_GE(examples, 15);
}

}  // namespace
