#include <gmock/gmock.h>

#include <functional>
#include <numbers>

#include "Diagnosis/StructureCheck.h"
#include "Platform/NumberText.h"
#include "Tests/Structures.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using enum Finding::Consequence;
using Positions = std::vector<std::int64_t>;

/// A triangle in the plane z = 0 with corners at (0, 0), (4, 0) and (1, 2), held at the first two, loaded at the third.
struct Triangle : Project {
  explicit Triangle(BarKind kind = {}) {
    for (const Vector3& place : {Vector3{0, 0, 0}, Vector3{4, 0, 0}, Vector3{1, 2, 0}}) addNode(place);
    addBar(*this, 0, 1, 100, kind);
    addBar(*this, 1, 2, 100, kind);
    addBar(*this, 2, 0, 100, kind);
    setLoadAndRestraint(0, {}, true, true, true);
    setLoadAndRestraint(1, {}, false, true, true);
    setLoadAndRestraint(2, {1, -2, 0}, false, false, false);
  }
};

struct Fault {
  const char* name;
  std::function<void(Project&)> plant;
  Finding::Consequence consequence;
  const char* title;
  const char* text;
  Positions nodes = {};
  Positions trusses = {};
  Positions beams = {};
  bool isFatal = false;
  BarKind kind = {};
};

void PrintTo(const Fault& fault, std::ostream* out) {
  *out << fault.name;
}

class OneFault : public testing::TestWithParam<Fault> {};

/// Each fault is the only finding, and says of a solve what a solve then does.
TEST_P(OneFault, IsNamedAndForetold) {
  const Fault& fault = GetParam();
  Triangle project(fault.kind);
  testing::internal::CaptureStdout();
  fault.plant(project);
  const auto check = StructureCheck::of(project);
  testing::internal::GetCapturedStdout();
  ASSERT_EQ(check.findings.size(), 1u);
  const Finding& finding = check.findings.front();
  EXPECT_EQ(finding.consequence, fault.consequence) << finding.text;
  EXPECT_EQ(finding.title, fault.title);
  EXPECT_THAT(finding.text, HasSubstr(fault.text));
  EXPECT_EQ(finding.nodes, fault.nodes);
  EXPECT_EQ(finding.trusses, fault.trusses);
  EXPECT_EQ(finding.beams, fault.beams);
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

void addLonelyNode(Project& project) {
  project.addNode({9, 9, 9});
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
              "17 loads and 18 restraints for 18"},
        Fault{"UnknownNode",
              [](Project& p) { p.trussElements.edit()[1].endNodeId = 3; },
              EndsProgram,
              "Unknown nodes",
              "bar 1",
              {},
              {1}},
        Fault{"NotANumber",
              [](Project& p) { p.F_I.edit()[12] = std::nan(""); },
              Meaningless,
              "Numbers that are none",
              "load of node 2 is",
              {2}},
        Fault{"LonelyLastNode", addLonelyNode, EndsProgram, "Nodes without elements", "joins node 3", {3}},
        Fault{"LonelyFirstNode",
              [](Project& p) {
                for (TrussElement& bar : p.trussElements.edit()) ++bar.startNodeId, ++bar.endNodeId;
                p.addNode({9, 9, 9});
                for (auto* array : {&p.F_I.edit()}) std::rotate(array->begin(), array->end() - 6, array->end());
                auto& D = p.D_I.edit();
                std::rotate(D.begin(), D.end() - 6, D.end());
              },
              EndsProgram,
              "Nodes without elements",
              "joins node 0",
              {0}},
        Fault{"BeamWithoutLength",
              [](Project& p) {
                p.X_I.edit()[6] = 0;
                p.X_I.edit()[7] = 0;
                addBeam(p, 2, 0, 1, false);
              },
              EndsProgram,
              "Beams without length",
              "beam 0",
              {},
              {},
              {0}},
        Fault{"BeamAcross",
              [](Project& p) {
                p.X_I.edit()[6] = 0;
                addBeam(p, 2, 0, 1, false);
              },
              EndsProgram,
              "Beams across x",
              "beam 0",
              {},
              {},
              {0}},
        Fault{"BarWithoutLength",
              [](Project& p) {
                p.trussElements.edit().emplace_back(3, 0, 1, Vector3{}, Vector3{}, 1, 1, false, true);
                p.trussElements.edit()[0].startNodeId = 1;
                p.trussElements.edit()[0].endNodeId = 0;
                p.trussElements.edit()[3].endNodeId = 0;
              },
              Doubtful,
              "Bars without length",
              "bar 3",
              {},
              {3}},
        Fault{"RepeatedBar", [](Project& p) { addBar(p, 1, 0, 5); }, Doubtful, "Repeated bars", "bar 3", {}, {3}},
        Fault{"LoadOnSupport",
              [](Project& p) { p.F_I.edit()[7] = 1; },
              NeverConverges,
              "Loads on supports",
              "node 1",
              {1}},
        Fault{"NoLoad", [](Project& p) { p.setLoadAndRestraint(2, {}, false, false, false); }, NeverConverges,
              "No loads", "prints nan"},
        Fault{"NoSupport",
              [](Project& p) { p.D_I.edit().assign(18, false); },
              EndsProgram,
              "No supports",
              "3 independent ways",
              {0, 1, 2}},
        Fault{"TooFewSupports",
              [](Project& p) { p.setLoadAndRestraint(1, {}, false, false, true); },
              Meaningless,
              "Too few supports",
              "in 1 way,",
              {0, 1, 2}},
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
              Meaningless,
              "Mechanism",
              "Nothing holds node",
              {3}},
        Fault{"NoFirstValue",
              [](Project& p) {
                p.trussElements.edit().clear();
                p.X_I.edit() = {0, 0, 0, 0, 4, 0, 0, 0, 3};
                addBar(p, 0, 1, 1);
                addBar(p, 1, 2, 1);
                addBar(p, 2, 0, 1);
              },
              EndsProgram,
              "No stiffness of node 0 along x",
              "lends",
              {0}},
        Fault{"NegativeStiffness",
              [](Project& p) { p.trussElements.edit()[2].EAL3 = -90; },
              EndsProgram,
              "Stiffness that is not positive",
              "In step 1 the stiffness of node 0 in translation along x becomes -",
              {0, 1, 2}},
        Fault{"CompressedNonLinearBars",
              [](Project&) {},
              EndsProgram,
              "Compressed non-linear bars",
              "In step 2 the stiffness of node 0 in translation along z becomes -",
              {0, 1, 2},
              {1, 2},
              {},
              true,
              {.isNonLinear = true}},
        Fault{"DroppedOut",
              [](Project& p) {
                p.trussElements.edit().clear();
                p.X_I.edit() = {0, 0, 0, 2, 0, 0, 1, 0, 0};
                addBar(p, 0, 1, 1, {.isCompressionOnly = true});
                addBar(p, 1, 2, 1, {.isCompressionOnly = true});
                p.setLoadAndRestraint(1, {1, 0, 0}, false, true, true);
                p.setLoadAndRestraint(2, {}, true, true, true);
              },
              EndsProgram,
              "Compression-only bars have dropped out",
              "took tension and dropped out",
              {0, 1, 2},
              {0, 1}},
        Fault{"Buckling",
              makeBucklingRow,
              EndsProgram,
              "Loss of stability",
              "at node 2 in translation along y",
              {2},
              {1, 2}},
        Fault{"LoadThatNothingResists",
              [](Project& p) { p.F_I.edit()[14] = 1; },
              NeverConverges,
              "Loads that nothing resists",
              "direction of a load at node 2",
              {2}},
        Fault{"LoadCarriedByBeam",
              [](Project& p) {
                p.addNode({-3, 0, 0});
                addBeam(p, 0, 3, 1, false);
                p.setLoadAndRestraint(3, {0, 0, 1}, false, false, false);
                clamp(p, 0);
              },
              NeverConverges,
              "Loads carried by beams",
              "node 3",
              {3}}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(StructureCheck, SolvesOnceWithTheNumbersAndLinesOfASolve) {
  for (const BarKind kind : {BarKind{}, BarKind{.isCompressionOnly = true}, BarKind{.isNonLinear = true}}) {
    Triangle project(kind);
    project.setLoadAndRestraint(1, {}, true, true, true);
    project.setLoadAndRestraint(2, {0.01, kind.isCompressionOnly ? -0.02 : 0.02, 0}, false, false, true);
    testing::internal::CaptureStdout();
    auto check = StructureCheck::of(project);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_THAT(check.findings, IsEmpty());
    ASSERT_NE(check.solved, nullptr);
    EXPECT_THAT(*project.U_I, testing::Each(0.0));

    const auto other = project.copy();
    testing::internal::CaptureStdout();
    other->Solve();
    std::string lines = "\n";
    for (const double norm : check.norms) lines += numberText(norm) + "\n";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), lines);
    project.takeSolution(std::move(*check.solved));
    EXPECT_EQ(*project.U_I, *other->U_I);
    EXPECT_EQ(project.dU_I, other->dU_I);
    EXPECT_EQ(project.R_I, other->R_I);
    EXPECT_EQ(*project.trussElements, *other->trussElements);
    EXPECT_EQ(project.H_II.values, other->H_II.values);
  }
}

/// Turned structures have supports and movements along no axis, and turns of a straight part about itself move nothing.
TEST(StructureCheck, SeesSupportsFromAnyDirection) {
  for (int step = 0; step < 12; ++step) {
    const double angle = step * std::numbers::pi / 6;
    const auto turned = [angle](double x, double y) {
      return Vector3{1000 + x * std::cos(angle) - y * std::sin(angle), x * std::sin(angle) + y * std::cos(angle), 0};
    };
    Project frame;
    for (const Vector3& place : {turned(0, 0), turned(2, 0), turned(0.3, 1)}) frame.addNode(place);
    for (const auto& [a, b] : {std::pair{0, 1}, {1, 2}, {2, 0}}) addBar(frame, a, b, 100);
    frame.setLoadAndRestraint(0, {}, true, true, true);
    frame.setLoadAndRestraint(1, {}, false, false, true);
    frame.setLoadAndRestraint(2, {1, 1, 0}, false, false, true);
    const auto loose = StructureCheck::of(frame);
    ASSERT_EQ(loose.findings.size(), 1u) << angle;
    EXPECT_EQ(loose.findings[0].title, "Too few supports");
    frame.setLoadAndRestraint(1, {}, std::abs(std::sin(angle)) > 0.5, std::abs(std::sin(angle)) < 0.6, true);
    EXPECT_THAT(StructureCheck::of(frame).findings, IsEmpty()) << angle;
  }
  Project row;
  row.addNode({0, 0, 0});
  row.addNode({2, 1, 1});
  addBar(row, 0, 1, 100);
  row.setLoadAndRestraint(0, {}, true, true, true);
  row.setLoadAndRestraint(1, {1, 0, 0}, false, true, true);
  EXPECT_THAT(StructureCheck::of(row).findings, IsEmpty());
}

TEST(StructureCheck, BlamesABeamThatIsTheWrongWayRound) {
  Triangle project;
  project.addNode({-3, 0, 0});
  addBeam(project, 3, 0, 1000, false);
  const auto findings = StructureCheck::of(project).findings;
  ASSERT_EQ(findings.size(), 2u);
  EXPECT_EQ(findings[0].title, "Beams the wrong way round");
  EXPECT_EQ(findings[1].consequence, EndsProgram);
  EXPECT_THAT(findings[1].text, HasSubstr("since beam 0 is the wrong way round"));
  EXPECT_THAT(findings[1].beams, ElementsAre(0));
}

TEST(StructureCheck, TellsOfEveryFaultThatItCanSee) {
  Triangle project;
  addBar(project, 0, 1, 5);
  project.F_I.edit()[1] = 3;
  project.setLoadAndRestraint(1, {}, false, false, true);
  std::vector<std::string> titles;
  for (const Finding& finding : StructureCheck::of(project).findings) titles.push_back(finding.title);
  EXPECT_THAT(titles, ElementsAre("Repeated bars", "Loads on supports", "Too few supports"));
  EXPECT_EQ(listed("node", {1, 2, 3, 4, 5}), "nodes 1, 2, 3, 4 and 5");
  EXPECT_EQ(listed("node", {1, 2, 3, 4, 5, 6}), "nodes 1, 2, 3, 4 and 2 more");
}

}  // namespace
