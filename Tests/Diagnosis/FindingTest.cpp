#include <gmock/gmock.h>

#include <functional>

#include "Diagnosis/StructureCheck.h"
#include "Tests/Diagnosis/Triangle.h"

using namespace gavrel;

namespace {

using testing::HasSubstr;
using enum Finding::Consequence;

struct Fault {
  const char* name;
  std::function<void(Project&)> plant;
  Finding::Consequence consequence;
  const char* title;
  const char* text;
  const char* named = "";  ///< the nodes, bars and beams that the finding names
};

void PrintTo(const Fault& fault, std::ostream* out) {
  *out << fault.name;
}

class OneFault : public testing::TestWithParam<Fault> {};

/// Each fault is the only finding, and says of a solve what a solve then does.
TEST_P(OneFault, IsNamedAndForetold) {
  const Fault& fault = GetParam();
  Triangle project;
  testing::internal::CaptureStdout();
  fault.plant(project);
  const auto check = StructureCheck::inspectAndSolve(project);
  testing::internal::GetCapturedStdout();
  ASSERT_EQ(check.findings.size(), 1u);
  const Finding& finding = check.findings.front();
  // How the rounding errors fall decides on what becomes of a structure that moves.
  const bool isInVain = fault.consequence == Meaningless && finding.consequence == NeverConverges;
  EXPECT_TRUE(finding.consequence == fault.consequence || isInVain) << finding.text;
  EXPECT_EQ(finding.title, fault.title);
  EXPECT_THAT(finding.text, HasSubstr(fault.text));
  std::string named;
  for (const std::int64_t node : finding.nodes) named += " n" + std::to_string(node);
  for (const std::int64_t truss : finding.trusses) named += " t" + std::to_string(truss);
  for (const std::int64_t beam : finding.beams) named += " b" + std::to_string(beam);
  EXPECT_EQ(named, fault.named);
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  if (fault.consequence == EndsProgram) {
    EXPECT_DEATH(project.Solve(), "Fatal error");
    EXPECT_EQ(check.solved, nullptr);
    return;
  }
  double last = 0;
  testing::internal::CaptureStdout();
  project.Solve([&last](int, double norm) { last = norm; });
  testing::internal::GetCapturedStdout();
  if (fault.consequence != Meaningless) {
    EXPECT_EQ(fault.consequence == NeverConverges, !(last < Project::convergenceTolerance));
  }
}

/// Makes the bars as long as the places of their nodes ask for.
void refit(Project& project) {
  const auto bars = std::exchange(project.trussElements.edit(), {});
  for (const TrussElement& bar : bars) addBar(project, bar.startNodeId, bar.endNodeId, 100);
}

/// Replaces everything by a row of three non-linear bars along x under a load of 1, on linear springs of stiffness 2.5
/// along y, enough for each node alone but not for both inner ones to buckle to opposite sides.
void makeBucklingRow(Project& project) {
  project.trussElements.edit().clear();
  project.X_I.edit() = {0, 0, 0, 1, 0, 0, 2, 0, 0};
  project.addNode({3, 0, 0});
  for (std::int64_t node = 0; node < 3; ++node) addBar(project, node, node + 1, 1000, {.isNonLinear = true});
  for (std::int64_t node = 0; node < 4; ++node) {
    for (const auto& [place, stiffness] : {std::pair{Vector3{0, -1, 0}, 2.5}, {Vector3{0, 0, -1}, 10.0}}) {
      const std::int64_t ground = project.nodeCount();
      project.addNode({static_cast<double>(node), place.y, place.z});
      project.setLoadAndRestraint(ground, {}, true, true, true);
      addBar(project, node, ground, stiffness);
    }
    const bool isEnd = node == 0 || node == 3;
    project.setLoadAndRestraint(node, {node == 3 ? -1.0 : 0.0, 0, 0}, node == 0, isEnd, true);
  }
}

INSTANTIATE_TEST_SUITE_P(
    StructureCheck, OneFault,
    testing::Values(
        Fault{"NoElements", [](Project& p) { p.trussElements.edit().clear(); }, EndsProgram, "No elements", "neither"},
        Fault{"MissingLoads", [](Project& p) { p.F_I.edit().resize(17); }, EndsProgram, "Missing loads or restraints",
              "17 loads and 18 restraints, but a solve reads 18 loads and the first 15 restraints"},
        Fault{"SurplusLoad", [](Project& p) { p.F_I.edit().push_back(3); }, NeverConverges,
              "Loads beyond the last node", "19 loads for 18"},
        Fault{"UnknownNode", [](Project& p) { p.trussElements.edit()[1].endNodeId = 3; }, EndsProgram, "Unknown nodes",
              "bar 1", " t1"},
        Fault{"NotANumber", [](Project& p) { p.F_I.edit()[12] = std::nan(""); }, NeverConverges,
              "Loads that are not finite", "load of node 2 is", " n2"},
        Fault{"LoadWithoutEnd", [](Project& p) { p.F_I.edit()[12] = 1e160; }, Meaningless, "Loads out of range",
              "any residual counts as zero"},
        Fault{"PlaceThatIsNone",
              [](Project& p) {
                p.X_I.edit()[6] = std::nan("");
                refit(p);
              },
              EndsProgram, "Bars without finite stiffness", "bars 1 and 2", " t1 t2"},
        Fault{"LonelyLastNode", [](Project& p) { p.addNode({}); }, EndsProgram, "Nodes without elements",
              "joins node 3", " n3"},
        Fault{"BeamWithoutLength",
              [](Project& p) {
                p.X_I.edit() = {0, 0, 0, 4, 0, 0, 0, 0, 0};
                refit(p);
                p.trussElements.edit().pop_back();
                addBeam(p, 2, 0, 1, false);
              },
              EndsProgram, "Beams without length", "beam 0", " b0"},
        Fault{"BeamAcross",
              [](Project& p) {
                p.X_I.edit()[6] = 0;
                refit(p);
                addBeam(p, 2, 0, 1, false);
              },
              EndsProgram, "Beams across x", "beam 0", " b0"},
        Fault{"BarWithoutLength",
              [](Project& p) { p.trussElements.edit().emplace_back(3, 0, 0, Vector3{}, Vector3{}, 1, 1, false, true); },
              Doubtful, "Bars without length", "bar 3", " t3"},
        Fault{"RepeatedBar", [](Project& p) { addBar(p, 1, 0, 5); }, Doubtful, "Repeated bars", "bar 3", " t3"},
        Fault{"LoadOnSupport", [](Project& p) { p.F_I.edit()[7] = 1; }, NeverConverges, "Loads on supports", "node 1",
              " n1"},
        Fault{"NoLoad", [](Project& p) { p.setLoadAndRestraint(2, {}, false, false, false); }, NeverConverges,
              "No loads", "prints nan"},
        Fault{"NoSupport", [](Project& p) { p.D_I.edit().assign(18, false); }, EndsProgram, "No supports",
              "3 independent ways", " n0 n1 n2"},
        Fault{"TooFewSupports", [](Project& p) { p.setLoadAndRestraint(1, {}, false, false, true); }, Meaningless,
              "Too few supports", "in 1 way,", " n0 n1 n2"},
        Fault{"Mechanism",
              [](Project& p) {
                p.addNode({5, 2, 0});
                p.addNode({7, 0, 0});
                addBar(p, 2, 3, 100);
                addBar(p, 3, 4, 100);
                p.setLoadAndRestraint(4, {}, true, true, true);
                p.setLoadAndRestraint(0, {}, true, true, true);
                p.trussElements.edit().erase(p.trussElements.edit().begin() + 1);
                p.setLoadAndRestraint(1, {}, true, true, true);
                p.setLoadAndRestraint(2, {1, -2, 0}, false, false, true);
                p.setLoadAndRestraint(3, {}, false, false, true);
              },
              Meaningless, "Mechanism", "Nothing holds node", " n3"},
        Fault{"NoFirstValue",
              [](Project& p) {
                p.trussElements.edit().clear();
                p.X_I.edit() = {0, 0, 0, 0, 4, 0, 0, 0, 3};
                addBar(p, 0, 1, 1);
                addBar(p, 1, 2, 1);
                addBar(p, 2, 0, 1);
              },
              EndsProgram, "No stiffness of node 0 along x", "which the solver uses for all directions", " n0"},
        Fault{"NegativeStiffness", [](Project& p) { p.trussElements.edit()[2].EAL3 = -90; }, EndsProgram,
              "Stiffness that is not positive",
              "In step 1 the stiffness of node 0 in translation along x becomes -65.0, since bar 2 has a negative "
              "stiffness",
              " n0 n2 t2"},
        Fault{"MisfitBar", [](Project& p) { p.trussElements.edit()[1].dXx *= 1.01; }, Doubtful,
              "Elements that do not fit their nodes", "bar 1", " t1"},
        Fault{"CompressedNonLinearBars",
              [](Project& p) {
                for (TrussElement& bar : p.trussElements.edit()) bar.isNonLinear = true;
              },
              EndsProgram, "Compressed non-linear bars",
              "In step 2 the stiffness of node 0 in translation along z becomes -", " n0 n1 n2 t1 t2"},
        Fault{"DroppedOut",
              [](Project& p) {
                p.trussElements.edit().clear();
                p.X_I.edit() = {0, 0, 0, 2, 0, 0, 1, 0, 0};
                addBar(p, 0, 1, 1, {.isCompressionOnly = true});
                addBar(p, 1, 2, 1, {.isCompressionOnly = true});
                p.setLoadAndRestraint(1, {1, 0, 0}, false, true, true);
                p.setLoadAndRestraint(2, {}, true, true, true);
              },
              EndsProgram, "Compression-only bars have dropped out", "since bar 0 took tension and dropped out",
              " n0 t0"},
        Fault{"Buckling", makeBucklingRow, EndsProgram, "Loss of stability", "at node 2 in translation along y",
              " n2 t1 t2"},
        Fault{"LoadThatNothingResists", [](Project& p) { p.F_I.edit()[14] = 1; }, NeverConverges,
              "Loads that nothing resists", "direction of a load at node 2", " n2"},
        Fault{"MomentWithoutBeams",
              [](Project& p) {
                p.F_I.edit()[15] = 1;
                p.D_I.edit()[15] = true;  // which no bar reads
              },
              NeverConverges, "Loads that nothing resists", "direction of a load at node 2", " n2"},
        Fault{"LoadCarriedByBeam",
              [](Project& p) {
                p.addNode({-3, 0, 0});
                addBeam(p, 0, 3, 1, false);
                p.setLoadAndRestraint(3, {0, 0, 1}, false, false, false);
                clamp(p, 0);
              },
              NeverConverges, "Loads carried by beams", "node 3", " n3"}),
    [](const auto& test) { return std::string(test.param.name); });

}  // namespace
