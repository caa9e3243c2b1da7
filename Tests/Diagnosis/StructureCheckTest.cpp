#include <gmock/gmock.h>

#include <numbers>

#include "Diagnosis/StructureCheck.h"
#include "Platform/NumberText.h"
#include "Tests/Diagnosis/Triangle.h"

using namespace gavrel;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using enum Finding::Consequence;

TEST(StructureCheck, SolvesOnceWithTheNumbersAndLinesOfASolve) {
  for (const BarKind kind : {BarKind{}, BarKind{.isCompressionOnly = true}, BarKind{.isNonLinear = true}}) {
    Triangle project(kind);
    project.setLoadAndRestraint(1, {}, true, true, true);
    project.setLoadAndRestraint(2, {0.01, kind.isCompressionOnly ? -0.02 : 0.02, 0}, false, false, true);
    testing::internal::CaptureStdout();
    auto check = StructureCheck::inspectAndSolve(project);
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
      return Vector3{1e8 + x * std::cos(angle) - y * std::sin(angle), 1e8 + x * std::sin(angle) + y * std::cos(angle),
                     1e8};
    };
    Project frame;
    for (const Vector3& place : {turned(0, 0), turned(2, 0), turned(0.3, 1)}) frame.addNode(place);
    for (const auto& [a, b] : {std::pair{0, 1}, {1, 2}, {2, 0}}) addBar(frame, a, b, 100);
    frame.setLoadAndRestraint(0, {}, true, true, true);
    frame.setLoadAndRestraint(1, {}, false, false, true);
    frame.setLoadAndRestraint(2, {1, 1, 0}, false, false, true);
    const auto loose = StructureCheck::inspectAndSolve(frame);
    ASSERT_EQ(loose.findings.size(), 1u) << angle;
    EXPECT_EQ(loose.findings[0].title, "Too few supports");
    EXPECT_THAT(loose.findings[0].text, HasSubstr("the structure is free to move or turn in 1 way,"));
    frame.setLoadAndRestraint(1, {}, std::abs(std::sin(angle)) > 0.5, std::abs(std::sin(angle)) < 0.6, true);
    EXPECT_THAT(StructureCheck::inspectAndSolve(frame).findings, IsEmpty()) << angle;
  }
  Project row;
  row.addNode({0, 0, 0});
  row.addNode({2, 1, 1});
  addBar(row, 0, 1, 100);
  row.setLoadAndRestraint(0, {}, true, true, true);
  row.setLoadAndRestraint(1, {1, 0, 0}, false, true, true);
  EXPECT_THAT(StructureCheck::inspectAndSolve(row).findings, IsEmpty());
}

TEST(StructureCheck, BlamesABeamThatIsTheWrongWayRound) {
  for (const auto& [x, start, end] : {std::tuple{3.0, 0, 3}, {-3.0, 3, 0}}) {
    Triangle project;
    project.addNode({x, 0, 0});
    addBeam(project, start, end, 1000, false);
    const auto findings = StructureCheck::inspectAndSolve(project).findings;
    ASSERT_EQ(findings.size(), 2u);
    EXPECT_EQ(findings[0].consequence, EndsProgram);
    EXPECT_THAT(findings[0].text, HasSubstr("since beam 0 is the wrong way round"));
    EXPECT_THAT(findings[0].beams, ElementsAre(0));
    EXPECT_EQ(findings[1].title, "Beams the wrong way round");
  }
}

TEST(StructureCheck, TellsOfLoosePartsOneByOne) {
  Triangle project;
  for (int part = 0; part < 3; ++part) {
    const double y = 10 + part;
    for (const Vector3& place : {Vector3{0, y, 0}, {5, y, 1}}) project.addNode(place);
    addBar(project, project.nodeCount() - 2, project.nodeCount() - 1, 100);
  }
  project.setLoadAndRestraint(5, {}, true, true, true);
  project.setLoadAndRestraint(6, {}, false, true, true);
  const auto findings = StructureCheck::inspectAndSolve(project).findings;
  ASSERT_EQ(findings.size(), 1u);
  EXPECT_THAT(findings[0].text, HasSubstr("2 parts are free to move or turn as rigid bodies, the first, with nodes 3 "
                                          "and 4, in 3 independent ways"));
  EXPECT_THAT(findings[0].nodes, ElementsAre(3, 4, 7, 8));
  for (const int node : {3, 4}) project.setLoadAndRestraint(node, {}, true, true, true);
  EXPECT_THAT(StructureCheck::inspectAndSolve(project).findings.at(0).text,
              HasSubstr("the part with nodes 7 and 8 is free to move"));
}

/// A square with a diagonal that takes no tension, pulled so that it gets longer: it stands until the second step.
TEST(StructureCheck, BlamesTheBarThatLeavesAMechanismInALaterStep) {
  for (const double modulus : {100.0, 128.0, 333.3}) {
    Project square;
    for (const Vector3& place : {Vector3{0, 0, 0}, {3, 0, 0}, {3, 3, 0}, {0, 3, 0}}) square.addNode(place);
    for (const auto& [a, b] : {std::pair{0, 1}, {1, 2}, {2, 3}, {3, 0}}) addBar(square, a, b, modulus);
    addBar(square, 0, 2, modulus, {.isCompressionOnly = true});
    square.setLoadAndRestraint(0, {}, true, true, true);
    square.setLoadAndRestraint(1, {}, false, true, true);
    for (const int top : {2, 3}) square.setLoadAndRestraint(top, {1, 0, 0}, false, false, true);
    const auto findings = StructureCheck::inspectAndSolve(square).findings;
    ASSERT_EQ(findings.size(), 1u) << modulus;
    EXPECT_EQ(findings[0].title, "Compression-only bars have dropped out");
    EXPECT_THAT(findings[0].text, HasSubstr("In step 2 nothing holds node "));
    EXPECT_THAT(findings[0].trusses, ElementsAre(4));
  }
}

TEST(StructureCheck, BlamesNoBeamForAMechanismOfBars) {
  Project square;
  for (const Vector3& place : {Vector3{0, 0, 0}, {3, 0, 0}, {3, 3, 0}, {0, 3, 0}}) square.addNode(place);
  for (const auto& [a, b] : {std::pair{0, 1}, {1, 2}, {2, 3}, {3, 0}}) addBar(square, a, b, 100);
  addBeam(square, 1, 0, 1, false);  // whose end has the lower number
  clamp(square, 0);
  clamp(square, 1);
  for (const int top : {2, 3}) square.setLoadAndRestraint(top, {1, 0, 0}, false, false, true);
  EXPECT_EQ(StructureCheck::inspectAndSolve(square).findings.front().title, "Mechanism");
}

TEST(StructureCheck, FindsNothingInWhatNoSolveStumblesOver) {
  Project softFirstValue;  // it is lent to directions that nothing loads
  for (const Vector3& place : {Vector3{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}) softFirstValue.addNode(place);
  addBar(softFirstValue, 0, 1, 5e-10);
  addBar(softFirstValue, 1, 2, 100);
  addBar(softFirstValue, 2, 0, 100);
  softFirstValue.setLoadAndRestraint(0, {}, true, true, true);
  softFirstValue.setLoadAndRestraint(1, {}, true, true, true);
  softFirstValue.setLoadAndRestraint(2, {1, 1, 0}, false, false, true);
  const auto check = StructureCheck::inspectAndSolve(softFirstValue);
  EXPECT_THAT(check.findings, IsEmpty());
  ASSERT_NE(check.solved, nullptr);
  EXPECT_LT(check.norms.back(), Project::convergenceTolerance);
}

TEST(StructureCheck, TellsOfEveryFaultThatItCanSee) {
  Triangle project;
  addBar(project, 0, 1, 5);
  project.F_I.edit()[1] = 3;
  project.setLoadAndRestraint(1, {}, false, false, true);
  const auto findings = StructureCheck::inspectAndSolve(project).findings;
  std::vector<std::string> titles(findings.size());
  std::ranges::transform(findings, titles.begin(), &Finding::title);
  EXPECT_THAT(titles, testing::UnorderedElementsAre("Too few supports", "Loads on supports", "Repeated bars"));
  EXPECT_TRUE(std::ranges::is_sorted(findings, {}, &Finding::consequence));
  EXPECT_EQ(listPositions("node", {1, 2, 3, 4, 5}), "nodes 1, 2, 3, 4 and 5");
  EXPECT_EQ(listPositions("node", {1, 2, 3, 4, 5, 6}), "nodes 1, 2, 3, 4 and 2 more");
}

}  // namespace
