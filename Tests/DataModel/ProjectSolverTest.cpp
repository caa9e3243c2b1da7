#include <gmock/gmock.h>

#include <cmath>
#include <string>
#include <vector>

#include "DataModel/Project.h"
#include "Tests/Structures.h"

namespace {

using testing::DoubleNear;
using testing::Each;
using testing::Pointwise;
using Columns = std::vector<std::vector<std::int32_t>>;
using Numbers = std::vector<double>;

constexpr double stiffness = 512;  // of every bar here; a power of two, so that small cases come out exactly

/// Nodes at x = 0, 1, 2, ..., the first one clamped, the others guided along x.
struct Row : Project {
  explicit Row(int nodes) {
    for (int node = 0; node < nodes; ++node) {
      addNode({static_cast<double>(node), 0, 0});
      setLoadAndRestraint(node, {}, node == 0, true, true);
    }
  }
  void pull(std::int64_t node, double load) { setLoadAndRestraint(node, {load, 0, 0}, false, true, true); }
  double moved(std::size_t node) const { return U_I->at(6 * node); }
};

/// What the solve prints.
std::string linesOf(Project& project) {
  testing::internal::CaptureStdout();
  project.Solve();
  return testing::internal::GetCapturedStdout();
}

std::string times(int count, const std::string& line) {
  std::string lines;
  while (count-- > 0) lines += line;
  return lines;
}

TEST(ProjectSolver, SolvesASingleBarInTwoSteps) {
  Row bar(2);
  addBar(bar, 0, 1, stiffness);
  bar.pull(1, 3);
  EXPECT_EQ(linesOf(bar), "\n1.0\n0.0\n");
  EXPECT_EQ(bar.moved(1), 3 / stiffness);
  EXPECT_EQ(bar.trussElements->front().axialForce(), 3);
  bar.trussElements.edit().front().currentStrain = 0;
  EXPECT_EQ(linesOf(bar), "\n1.0\n0.0\n") << "a second solve starts afresh";
  EXPECT_EQ(bar.moved(1), 3 / stiffness);
}

TEST(ProjectSolver, SolvesALinearStructureInTwoSteps) {
  Project tripod;  // its bars stand along the axes, so each carries one component of the load
  for (const Vector3& foot : {Vector3{2, 0, 0}, Vector3{0, 4, 0}, Vector3{0, 0, 8}}) tripod.addNode(foot);
  tripod.addNode({0, 0, 0});
  tripod.addNode({-1, 0, 0});  // hangs on the apex
  for (std::int64_t foot = 0; foot < 3; ++foot) {
    clamp(tripod, foot);
    addBar(tripod, 3, foot, stiffness);
  }
  addBar(tripod, 4, 3, stiffness);
  tripod.setLoadAndRestraint(3, {0, 2, 3}, false, false, false);
  tripod.setLoadAndRestraint(4, {1, 0, 0}, false, true, true);

  std::vector<double> norms;
  tripod.Solve([&](int step, double norm) {
    norms.push_back(norm);
    EXPECT_EQ(step, std::ssize(norms));
  });
  ASSERT_EQ(norms.size(), 2u);
  EXPECT_EQ(norms[0], 1);
  EXPECT_LT(norms[1], 1e-14);
  std::vector<double> expected(30);
  for (const auto& [dof, sum] : {std::pair{18u, 2.0}, {19u, 8.0}, {20u, 24.0}, {24u, 3.0}})
    expected[dof] = sum / stiffness;
  EXPECT_THAT(*tripod.U_I, Pointwise(DoubleNear(1e-15), expected));
}

TEST(ProjectSolver, NonLinearBarReachesItsEquilibrium) {
  Row bar(2);
  addBar(bar, 0, 1, stiffness, {.isNonLinear = true});
  bar.pull(1, 100);
  std::vector<double> norms;
  bar.Solve([&](int, double norm) { norms.push_back(norm); });
  EXPECT_GT(norms.size(), 3u);
  EXPECT_LT(norms.back(), Project::convergenceTolerance);
  EXPECT_LT(norms.back(), norms[norms.size() - 2] * 0.01) << "the last steps converge quadratically";
  const double u = bar.moved(1);
  EXPECT_NEAR(stiffness * (u + u * u / 2) * (1 + u), 100, 100 * Project::convergenceTolerance);
}

TEST(ProjectSolver, LoadOnARestraintDrifts) {
  Row bar(2);
  addBar(bar, 0, 1, stiffness);
  bar.pull(1, 3);
  bar.F_I.edit()[7] = 4;
  EXPECT_EQ(linesOf(bar), "\n1.0\n" + times(49, "0.8\n"));
  EXPECT_EQ(bar.moved(1), 3 / stiffness);
  EXPECT_EQ((*bar.U_I)[7], 50 * 4 / stiffness) << "its own stiffness is zero and repaired";
}

TEST(ProjectSolver, NoLoadGivesNoNorm) {
  Row bar(2);
  addBar(bar, 0, 1, stiffness);
  EXPECT_EQ(linesOf(bar), "\n" + times(50, "nan\n"));
  EXPECT_THAT(*bar.U_I, Each(0.0));
}

TEST(ProjectSolver, CompressionOnlyBarLeavesARepairedUnknown) {
  Row row(3);
  addBar(row, 0, 1, stiffness);
  addBar(row, 1, 2, stiffness, {.isCompressionOnly = true});
  row.pull(1, 0);
  row.pull(2, 1);
  EXPECT_THAT(linesOf(row), testing::EndsWith(times(47, "1.0\n")));
  EXPECT_NEAR(row.moved(1), 0, 1e-15);
  EXPECT_NEAR(row.moved(2), 51 / stiffness, 1e-12);  // two bars' give in the first step, then one more each step
}

TEST(ProjectSolver, BeamsTakeTheLoadAnewInEachStep) {
  for (const bool isNonLinear : {false, true}) {
    Row cantilever(2);
    clamp(cantilever, 0);
    addBeam(cantilever, 1, 0, stiffness, isNonLinear);
    cantilever.setLoadAndRestraint(1, {2, 3, 0}, false, false, false);
    EXPECT_EQ(linesOf(cantilever), "\n" + times(50, "1.0\n"));
    const std::vector<double> once{2 / stiffness,   1 / stiffness, 0, 0, 0,
                                   -1.5 / stiffness};  // FL/EA, FL^3/3EI, FL^2/2EI
    for (std::size_t k = 0; k < once.size(); ++k) {
      EXPECT_NEAR(cantilever.dU_I[6 + k], once[k], 1e-15);
      EXPECT_NEAR((*cantilever.U_I)[6 + k], 50 * once[k], 1e-13);
    }
    EXPECT_NEAR(cantilever.beamElements->front().dθz, 49 * once[5], 1e-13) << "assembled before the last increment";
  }
}

TEST(ProjectSolver, RepairsSmallDiagonalsWithTheFirstValue) {
  Project project;
  project.nI = 5;
  project.H_II = CSR(Columns{{0, 1}, {1}, {2}, {3}, {4}});
  const double nan = std::nan("");
  project.H_II.values = {7, 0, -0.9e-9, 1e-9, nan, -1e-9};
  project.FillHessianDiagonal();
  EXPECT_THAT(project.H_II.values, Pointwise(testing::NanSensitiveDoubleEq(), Numbers{7, 0, 7, 1e-9, nan, -1e-9}));
}

TEST(ProjectSolver, LinearSolveLeavesTheResidual) {
  Project project;
  const auto solve = [&](CSR matrix, const std::vector<double>& values, const std::vector<double>& R_I) {
    project.nI = std::ssize(R_I);
    project.H_II = std::move(matrix);
    project.H_II.values = values;
    project.R_I = R_I;
    project.dU_I.assign(R_I.size(), 9);
    project.LinearSolve();
    EXPECT_EQ(project.R_I, R_I);
    return project.dU_I;
  };
  EXPECT_EQ(solve(CSR(Columns{{0}}), {4}, {6}), (std::vector<double>{1.5}));
  EXPECT_THAT(solve(CSR(Columns{{0, 1}, {1, 2}, {2}}), {4, 2, 5, 2, 5}, {8, 18, 19}),
              Pointwise(DoubleNear(1e-14), Numbers{1, 2, 3}));
}

/// The factorization starts threads in some builds of its library, so these run in fresh processes.
class ProjectSolverDeath : public testing::Test {
 protected:
  ProjectSolverDeath() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(ProjectSolverDeath, MissingStiffnessNamesTheNode) {
  Row nothing(2);
  EXPECT_DEATH(nothing.Solve(), "holds no values: the structure has no elements");
  Row lastAlone(3);
  addBar(lastAlone, 0, 1, stiffness);
  lastAlone.pull(1, 1);
  EXPECT_DEATH(lastAlone.Solve(), "index [0-9]+ is outside .*node 2, translation along x");
  Row middleAlone(3);
  addBar(middleAlone, 0, 2, stiffness);
  middleAlone.pull(2, 1);
  EXPECT_DEATH(middleAlone.Solve(), "no stiffness at node 1, translation along x");
  Row across(2);
  across.X_I.edit() = {0, 0, 0, 0, 1, 0};
  addBar(across, 0, 1, stiffness);
  across.pull(1, 1);
  EXPECT_DEATH(across.Solve(), "unstable at node 0, translation along x: its stiffness there is 0.0");
}

TEST_F(ProjectSolverDeath, LossOfStiffnessInTheSecondStepNamesTheNode) {
  const auto solveAloud = [](Project& project) {
    project.Solve([](int step, double) { std::fprintf(stderr, "step %d\n", step); });
  };
  Project arch;  // in the plane z = 0, where compression leaves nothing across
  for (const Vector3& place : {Vector3{0, 0, 0}, Vector3{2, 0, 0}, Vector3{1, 1, 0}}) arch.addNode(place);
  clamp(arch, 0);
  clamp(arch, 1);
  addBar(arch, 0, 2, stiffness, {.isNonLinear = true});
  addBar(arch, 1, 2, stiffness, {.isNonLinear = true});
  arch.setLoadAndRestraint(2, {0, -1, 0}, false, false, false);
  EXPECT_DEATH(solveAloud(arch), "^step 1\nFatal error: the structure is unstable at node 0, translation along z");

  Row tie(2);
  addBar(tie, 0, 1, stiffness, {.isCompressionOnly = true});
  tie.pull(1, 1);
  EXPECT_DEATH(solveAloud(tie), "^step 1\nFatal error: .*node 0, translation along x: its stiffness there is 0.0");
}

TEST_F(ProjectSolverDeath, MatrixThatCannotBeFactorizedNamesTheNode) {
  Row uprightBeam(2);
  uprightBeam.X_I.edit() = {0, 0, 0, 0, 0, 1};
  addBeam(uprightBeam, 0, 1, stiffness, false);
  uprightBeam.pull(1, 1);
  EXPECT_DEATH(uprightBeam.Solve(), "node 0, translation along y .*beam without extent along x");
  Row mechanism(2);
  mechanism.D_I.edit().assign(12, false);
  addBar(mechanism, 0, 1, 256);  // its root is whole, so that the lost pivot is exactly zero
  mechanism.F_I.edit()[6] = 1;
  EXPECT_DEATH(mechanism.Solve(), "unstable at node [01], translation along x: the other unknowns leave it no");
}

/// Rounding leaves a free bar a tiny stiffness where there is none, so that the factorization comes to an end.
TEST(ProjectSolver, WarnsOnceOfAMechanismThatRoundingHides) {
  Row mechanism(2);
  mechanism.D_I.edit().assign(12, false);
  addBar(mechanism, 0, 1, stiffness);
  mechanism.F_I.edit()[6] = 1;
  testing::internal::CaptureStderr();
  static_cast<void>(linesOf(mechanism));
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              testing::MatchesRegex("Warning: the structure may be unstable at node [01], translation along x: .*\n"));
}

}  // namespace
