#include "DataModel/Project.h"

#include <gtest/gtest.h>

#include "DataModel/Solver.h"
#include "Tests/Structures.h"

using namespace gavrel;

namespace {

TEST(Project, EachNodeAddsSixUnknowns) {
  Project project("frame", {TrussElement()}, {BeamElement()}, 2.5);
  EXPECT_EQ(project.nodeCount() + project.nI, 0);
  EXPECT_EQ(project.trussElements->size() + project.beamElements->size(), 2u);
  EXPECT_EQ(project.magnify, 2.5);
  EXPECT_EQ(*Project().name, "New Project");
  project.addNode({1, 2, 3});
  project.addNode({4, 5, 6});
  EXPECT_EQ(*project.X_I, (std::vector<double>{1, 2, 3, 4, 5, 6}));
  for (const auto& array : {*project.U_I, project.dU_I, *project.F_I}) EXPECT_EQ(array, std::vector<double>(12));
  EXPECT_EQ(*project.D_I, std::vector<bool>(12));
  EXPECT_EQ(project.vv_J, std::vector<std::int64_t>(12));
  EXPECT_EQ(project.nI, 12);
  EXPECT_EQ(project.nodeCount(), 2);
}

TEST(Project, RestrainedDirectionsCarryNoLoad) {
  Project project;
  project.addNode({0, 0, 0});
  project.addNode({1, 0, 0});
  project.setLoadAndRestraint(1, {10, 20, 30}, true, false, false);
  EXPECT_EQ(*project.F_I, (std::vector<double>{0, 0, 0, 0, 0, 0, 0, 20, 30, 0, 0, 0}));
  project.setLoadAndRestraint(1, {1, 2, 3}, false, true, true);
  EXPECT_EQ(*project.F_I, (std::vector<double>{0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0}));
  EXPECT_EQ(*project.D_I, (std::vector<bool>{0, 0, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0}));
}

TEST(Project, QueriesStepByThreeInAllArrays) {
  Project project;
  for (int i = 0; i < 2; ++i) project.addNode({10.0 * i, 1, 2});
  for (std::size_t i = 0; i < 12; ++i) {
    project.F_I.edit()[i] = static_cast<double>(i);
    project.U_I.edit()[i] = 100 + static_cast<double>(i);
    project.D_I.edit()[i] = i == 4;
  }
  EXPECT_EQ(project.getNodeCoordinates(1), (Vector3{10, 1, 2}));
  EXPECT_EQ(project.getNodeForce(1), (Vector3{3, 4, 5}));
  EXPECT_EQ(project.getNodeDisplacement(3), (Vector3{109, 110, 111}));
  EXPECT_EQ(project.getNodeRestraints(0), (Project::Restraints{false, false, false}));
  EXPECT_EQ(project.getNodeRestraints(1), (Project::Restraints{false, true, false}));
  EXPECT_FALSE(project.getNodeCoordinates(2));
  EXPECT_FALSE(project.getNodeRestraints(4));
  project.X_I.edit().resize(8);
  EXPECT_FALSE(project.getNodeCoordinates(2));
}

TEST(Project, NegativeAndOverflowingNodesEndTheProcess) {
  Project project;
  project.addNode({0, 0, 0});
  for (const auto& [node, reason] :
       {std::pair{-1L, "outside"}, {INT64_MAX / 2, "too large"}, {INT64_MIN, "too large"}}) {
    EXPECT_DEATH(static_cast<void>(project.getNodeCoordinates(node)), reason);
    EXPECT_DEATH(project.setLoadAndRestraint(node, {}, true, true, true), reason);
  }
}

/// A cantilever of a bar and a beam under a load across and along, solved.
std::shared_ptr<Project> solvedCantilever() {
  auto project = std::make_shared<Project>("cantilever", std::vector<TrussElement>{}, std::vector<BeamElement>{}, 3.0);
  for (const double x : {2.0, 0.0}) project->addNode({x, 0, 0});
  addBar(*project, 0, 1, 1.0);
  addBeam(*project, 0, 1, 1.0, false);
  clamp(*project, 0);
  project->setLoadAndRestraint(1, {1, 2, 0}, false, false, true);
  std::vector<double> norms;
  EXPECT_EQ(Solver(*project).Solve([&norms](int, double norm) { norms.push_back(norm); }, 4).norms, norms);
  EXPECT_EQ(norms.size(), 4U);
  return project;
}

TEST(Project, CopiesAndSolutionsBringEverythingButTheObservers) {
  const auto project = solvedCantilever();
  project->observe([] { FAIL() << "of the original"; });
  const auto copy = project->copy();
  const auto expectSameSolution = [&](const Project& other) {
    EXPECT_EQ(*other.trussElements, *project->trussElements);
    EXPECT_EQ(*other.beamElements, *project->beamElements);
    EXPECT_EQ(*other.U_I, *project->U_I);
    EXPECT_EQ(other.dU_I, project->dU_I);
    EXPECT_EQ(other.R_I, project->R_I);
  };
  expectSameSolution(*copy);
  copy->name.edit() += "";
  EXPECT_EQ(*copy->name, "cantilever");
  EXPECT_EQ(*copy->X_I, *project->X_I);
  EXPECT_EQ(*copy->F_I, *project->F_I);
  EXPECT_EQ(*copy->D_I, *project->D_I);
  EXPECT_EQ(copy->nI, 12);
  EXPECT_EQ(copy->vv_J, project->vv_J);
  EXPECT_EQ(copy->magnify, 3);
  EXPECT_TRUE(copy->H_II.values.empty());

  Project solved("other name");
  solved.takeSolution(std::move(*solvedCantilever()));
  expectSameSolution(solved);
  EXPECT_EQ(solved.H_II.values, project->H_II.values);
  EXPECT_EQ(*solved.name, "other name");
  EXPECT_TRUE(solved.X_I->empty());
}

TEST(Project, ALinearSolveAloneWarnsOfLostStiffness) {
  const auto captureWarning = [](Project& project, double lastDiagonal) {
    project.H_II.values = {1, 1, lastDiagonal};
    testing::internal::CaptureStderr();
    project.LinearSolve();
    return testing::internal::GetCapturedStderr();
  };
  Project project;
  project.nI = 2;
  project.H_II = CSR(std::vector<std::vector<std::int32_t>>{{0, 1}, {1}});
  project.R_I = project.dU_I = {0, 0};
  EXPECT_EQ(captureWarning(project, 2), "");
  EXPECT_EQ(captureWarning(project, 1 + 1e-15).find("Warning: the structure may be unstable at node 0, translation"),
            0U);
  EXPECT_EQ(captureWarning(project, 2), "");
}

/// One announcement for each published property that an operation writes, and before it: ahead of the k-th, no more
/// than k - 1 of them may differ.
TEST(Project, AnnouncesEachPropertyBeforeItChanges) {
  struct Properties {
    std::string name;
    std::vector<TrussElement> trusses;
    std::vector<BeamElement> beams;
    std::vector<double> X, U, F;
    std::vector<bool> D;

    explicit Properties(const Project& p)
        : name(*p.name),
          trusses(*p.trussElements),
          beams(*p.beamElements),
          X(*p.X_I),
          U(*p.U_I),
          F(*p.F_I),
          D(*p.D_I) {}
    int changedIn(const Project& p) const {
      return (*p.name != name) + (*p.trussElements != trusses) + (*p.beamElements != beams) + (*p.X_I != X) +
             (*p.U_I != U) + (*p.F_I != F) + (*p.D_I != D);
    }
  };
  const struct {
    const char* operation;
    void (*change)(Project&);
    int announced;
    int changed;
  } cases[] = {
      {"addNode", [](Project& p) { p.addNode({}); }, 4, 4},
      {"setLoadAndRestraint", [](Project& p) { p.setLoadAndRestraint(1, {}, false, true, false); }, 2, 2},
      {"setLoadAndRestraint past the end", [](Project& p) { p.setLoadAndRestraint(2, {}, true, true, true); }, 0, 0},
      {"edit", [](Project& p) { p.name.edit() = "other"; }, 1, 1},
      {"magnify", [](Project& p) { p.magnify = 3; }, 0, 0},
      {"Solver::Prepare", [](Project& p) { Solver(p).Prepare(); }, 1, 1},
      {"Solver::Assemble", [](Project& p) { Solver(p).Prepare(), Solver(p).Assemble(); }, 3, 3},
      // U_I at first; both lists and U_I in each of 17 steps, as the beam halves the residual; both lists at the end.
      {"Solve", [](Project& p) { p.Solve(); }, 1 + 17 * 3 + 2, 3},
      {"takeSolution", [](Project& p) { p.takeSolution(std::move(*p.copy())); }, 3, 0},
  };
  for (const auto& [operation, change, announced, changed] : cases) {
    SCOPED_TRACE(operation);
    Project project;
    for (const double x : {2.0, 0.0}) project.addNode({x, 0, 0});
    addBar(project, 0, 1, 1.0);
    addBeam(project, 0, 1, 1.0, false);
    project.setLoadAndRestraint(1, {1, 0, 0}, false, false, false);
    clamp(project, 0);
    project.U_I.edit()[6] = 9;
    project.trussElements.edit()[0].dUx = project.beamElements.edit()[0].dUx = 8;
    const Properties before(project);
    int calls = 0;
    project.observe([&] { EXPECT_LE(before.changedIn(project), calls++); });
    testing::internal::CaptureStdout();
    change(project);
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(calls, announced);
    EXPECT_EQ(before.changedIn(project), changed);
  }
}

}  // namespace
