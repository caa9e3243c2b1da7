#include <gmock/gmock.h>

#include <cmath>
#include <string>
#include <vector>

#include "DataModel/Solver.h"
#include "Tests/Structures.h"

using namespace gavrel;

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

/// What the solve prints; its steps are counted from 1.
std::string solveForLines(Project& project) {
  testing::internal::CaptureStdout();
  int steps = 0;
  project.Solve([&](int step, double) { EXPECT_EQ(step, ++steps); });
  return testing::internal::GetCapturedStdout();
}

std::string times(int count, const std::string& line) {
  std::string lines;
  while (count-- > 0) lines += line;
  return lines;
}

TEST(Solver, LoadOnARestraintDriftsAndNoLoadGivesNoNorm) {
  Row bar(2);
  addBar(bar, 0, 1, stiffness);
  bar.pull(1, 3);
  bar.F_I.edit()[7] = 4;
  EXPECT_EQ(solveForLines(bar), "\n1.0\n" + times(49, "0.8\n"));
  EXPECT_EQ(bar.moved(1), 3 / stiffness);
  EXPECT_EQ((*bar.U_I)[7], 50 * 4 / stiffness);
  bar.F_I.edit().assign(12, 0.0);
  EXPECT_EQ(solveForLines(bar), "\n" + times(50, "nan\n"));
  EXPECT_THAT(*bar.U_I, Each(0.0));
}

TEST(Solver, AResidualAtTheToleranceIsNotBelowIt) {
  Row bar(2);
  addBar(bar, 0, 1, stiffness);
  bar.pull(1, 1);
  double& onSupport = bar.F_I.edit()[7];  // what stays of the residual
  onSupport = Project::convergenceTolerance;
  const auto part = [&] { return onSupport / std::sqrt(1 + onSupport * onSupport); };
  while (part() < Project::convergenceTolerance) onSupport = std::nextafter(onSupport, 1.0);
  ASSERT_EQ(part(), Project::convergenceTolerance);
  EXPECT_EQ(solveForLines(bar), "\n1.0\n" + times(49, "1e-05\n"));
  while (part() >= Project::convergenceTolerance) onSupport = std::nextafter(onSupport, 0.0);
  EXPECT_EQ(solveForLines(bar), "\n1.0\n9.999999999999999e-06\n");
}

/// In this order two small stiffnesses add up to something that is not lost beside a large one.
TEST(Solver, AssemblesBarsBeforeBeams) {
  Row row(2);
  addBeam(row, 1, 0, 0x1p53, false);
  addBar(row, 0, 1, 1);
  addBar(row, 0, 1, 1);
  Solver solver(row);
  solver.Prepare();
  solver.Assemble();
  EXPECT_EQ(row.H_II.values.front(), 0x1p53 + 2);
}

/// Of the displacements, too: at their reset the old ones are there, and at a step's end the increment is known.
TEST(Solver, AnnouncesDisplacementsBeforeTheyChange) {
  Row bar(2);
  addBar(bar, 0, 1, stiffness);
  bar.pull(1, 3);
  static_cast<void>(Solver(bar).Solve());
  const Numbers before = *bar.U_I;
  bar.dU_I.assign(12, 0);
  std::vector<std::pair<Numbers, Numbers>> seen;
  bar.observe([&] { seen.emplace_back(*bar.U_I, bar.dU_I); });
  static_cast<void>(Solver(bar).Solve({}, 1));
  EXPECT_EQ(seen.front().first, before);
  EXPECT_THAT(seen.back().first, Each(0.0));
  EXPECT_EQ(seen.back().second, *bar.U_I);
}

TEST(Solver, CompressionOnlyBarLeavesARepairedUnknown) {
  Row row(3);
  addBar(row, 0, 1, stiffness);
  addBar(row, 1, 2, stiffness, {.isCompressionOnly = true});
  row.pull(1, 0);
  row.pull(2, 1);
  EXPECT_THAT(solveForLines(row), testing::EndsWith(times(47, "1.0\n")));
  EXPECT_NEAR(row.moved(1), 0, 1e-15);
  EXPECT_NEAR(row.moved(2), 51 / stiffness, 1e-12);  // two bars' give in the first step, then one more each step
}

TEST(Solver, RepairsSmallDiagonalsWithTheFirstValue) {
  Project project;
  project.nI = 5;
  project.H_II = CSR(Columns{{0, 1}, {1}, {2}, {3}, {4}});
  const double nan = std::nan("");
  project.H_II.values = {7, 0, -0.9e-9, 1e-9, nan, -1e-9};
  project.FillHessianDiagonal();
  EXPECT_THAT(project.H_II.values, Pointwise(testing::NanSensitiveDoubleEq(), Numbers{7, 0, 7, 1e-9, nan, -1e-9}));
}

TEST(Solver, LinearSolveLeavesTheResidual) {
  Project project;
  project.nI = 3;
  project.H_II = CSR(Columns{{0, 1}, {1, 2}, {2}});
  project.H_II.values = {4, 2, 5, 2, 5};
  project.R_I = {8, 18, 19};
  project.dU_I.assign(3, 9);
  project.LinearSolve();
  EXPECT_EQ(project.R_I, (Numbers{8, 18, 19}));
  EXPECT_THAT(project.dU_I, Pointwise(DoubleNear(1e-14), Numbers{1, 2, 3}));
}

struct Mechanism : Row {
  explicit Mechanism(double youngModulus) : Row(2) {
    D_I.edit().assign(12, false);
    addBar(*this, 0, 1, youngModulus);
    F_I.edit()[6] = 1;
  }
};

/// The first step of a solve takes what was assembled, a step by itself assembles.
TEST(Solver, StepsOneByOneGiveWhatASolveGives) {
  Mechanism stretched(stiffness);
  clamp(stretched, 0);
  stretched.trussElements.edit()[0].isNonLinear = true;
  stretched.F_I.edit()[6] = stiffness;
  stretched.D_I.edit()[7] = stretched.D_I.edit()[8] = true;
  const auto whole = stretched.copy();
  const auto norms = Solver(*whole).Solve().norms;
  EXPECT_GT(norms.size(), 3U);
  Solver(stretched).Prepare();
  for (const double expected : norms) {
    double norm = -1;
    stretched.SolveOneStep(norm, stiffness);
    EXPECT_EQ(norm, expected);
  }
  EXPECT_EQ(*stretched.U_I, *whole->U_I);
}

/// The factorization starts threads in some builds of its library, so deaths run in fresh processes.
TEST(Solver, MatrixThatCannotBeFactorizedNamesTheNode) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
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
  Row uprightBeam(2);
  uprightBeam.X_I.edit() = {0, 0, 0, 0, 0, 1};
  addBeam(uprightBeam, 0, 1, stiffness, false);
  uprightBeam.pull(1, 1);
  EXPECT_DEATH(uprightBeam.Solve(), "node 0, translation along y .*beam without extent along x");
  Mechanism mechanism(256);  // its root is whole, so that the lost pivot is exactly zero
  EXPECT_DEATH(mechanism.Solve(), "unstable at node [01], translation along x: no positive stiffness is left");
}

TEST(Solver, LossOfStiffnessInTheSecondStepNamesTheNode) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
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

/// Rounding leaves a free bar a tiny stiffness where there is none, so that the factorization comes to an end.
TEST(Solver, WarnsOnceOfAMechanismThatRoundingHides) {
  Mechanism free(stiffness);
  const auto weakness = Solver(free).Solve().weakness;
  ASSERT_TRUE(weakness);
  EXPECT_EQ(weakness->step, 1);
  EXPECT_TRUE(weakness->lasts);
  Mechanism mechanism(stiffness);
  testing::internal::CaptureStderr();
  static_cast<void>(solveForLines(mechanism));
  EXPECT_THAT(
      testing::internal::GetCapturedStderr(),
      testing::MatchesRegex("Warning: the structure may be unstable at node [01], translation along x: [^\n]*\n"));
  mechanism.D_I.edit()[7] = true;
  mechanism.F_I.edit()[7] = 1;  // all steps
  testing::internal::CaptureStderr();
  EXPECT_EQ(std::ranges::count(solveForLines(mechanism), '\n'), 51);
  const std::string warnings = testing::internal::GetCapturedStderr();
  EXPECT_EQ(std::ranges::count(warnings, '\n'), 1) << warnings;
}

}  // namespace
