#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "DataModel/ProjectFile.h"
#include "Tests/CommandLine/Command.h"
#include "Tests/Structures.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

using testing::HasSubstr;
using testing::StartsWith;

TEST(Solve, WritesTheResultsOfTheLastStep) {
  const TemporaryFolder folder;
  const auto outcome = gavrelCli({"solve", folder.put("bar.json", singleBarJson()), "-o", folder / "result.json"});
  ASSERT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "\n1.0\n0.0\n");
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(
      withoutSpace(folder.get("result.json")),
      R"({"name":"Singlebar","converged":true,"norms":[1,0],"U_I":[0,0,0,0,0,0,0.02,0,0,0,0,0],)"
      R"("dU_I":[0,0,0,0,0,0,0.02,0,0,0,0,0],"R_I":[0,0,0,0,0,0,0,0,0,0,0,0],"trussElements":[{"id":0,)"
      R"("startNodeId":0,"endNodeId":1,"materialID":0,"area":1,"dXx":-2,"dXy":0,"dXz":0,"EAL3":250,"dUx":-0.02,)"
      R"("dUy":0,"dUz":0,"currentStrain":0.04,"isCompressionOnly":false,"isNonLinear":false}],"beamElements":[]})");
}

TEST(Solve, TellsWhenItDidNotConverge) {
  const TemporaryFolder folder;
  const std::string model = folder.put("drift.json", singleBarJson(5));
  const auto lenient = gavrelCli({"solve", model, "-o", folder / "result.json"});
  EXPECT_EQ(lenient.status, 0);
  EXPECT_EQ(std::ranges::count(lenient.output, '\n'), 51);
  EXPECT_THAT(lenient.errors, HasSubstr("did not converge"));
  EXPECT_THAT(folder.get("result.json"), HasSubstr("\"converged\": false"));
  EXPECT_EQ(gavrelCli({"solve", model, "--strict"}).status, 2);

  std::string json = singleBarJson();
  json.replace(json.find("20, 0"), 2, "0");
  const auto unloaded = gavrelCli({"solve", folder.put("unloaded.json", json), "-o", folder / "result.json"});
  EXPECT_EQ(unloaded.status, 0);
  EXPECT_THAT(unloaded.output, StartsWith("\nnan\nnan\n"));
  EXPECT_THAT(folder.get("result.json"), HasSubstr("\"norms\": [\n    null,\n    null,"));
}

TEST(Solve, ShowsProgressOnATerminalOnly) {
  if (::access("/dev/ptmx", R_OK | W_OK) != 0 || !std::filesystem::exists("/dev/pts/ptmx"))
    GTEST_SKIP() << "this system has no pseudo-terminals";
  const TemporaryFolder folder;
  const std::string model = folder.put("bar.json", singleBarJson());
  const auto onTerminal = gavrelCli({"solve", model}, {.outputPath = "", .errorsToTerminal = true});
  EXPECT_EQ(onTerminal.output, "\n1.0\n0.0\n");
  EXPECT_THAT(onTerminal.errors, HasSubstr("step  1   norm 1.0"));
  EXPECT_THAT(onTerminal.errors, HasSubstr("step  2   norm 0.0"));
}

TEST(Solve, AbortsWithOneLineOnAnUnstableStructure) {
  const TemporaryFolder folder;
  std::string json = singleBarJson();
  json.replace(json.find("\"EAL3\": 250"), 11, "\"EAL3\": -250");
  folder.put("result.json", "old");
  const auto outcome = gavrelCli({"solve", folder.put("bad.json", json), "-o", folder / "result.json"});
  EXPECT_EQ(outcome.signal, SIGABRT);
  EXPECT_EQ(outcome.output, "\n");
  EXPECT_THAT(outcome.errors, testing::MatchesRegex("Fatal error: the structure is unstable at node 0, .*\n"));
  EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 1);
  EXPECT_EQ(folder.get("result.json"), "old");
}

#ifndef __SANITIZE_ADDRESS__  // which needs more address space than there is memory
TEST(Solve, EndsWithALineWhereMemoryEnds) {
  const TemporaryFolder folder;
  constexpr unsigned long mebibyte = 1 << 20;
  ASSERT_EQ(gavrelCli({"generate", "lattice", "--nodes", "14", "-o", folder / "lattice.json"}).status, 0);
  int failed = 0;
  for (const unsigned long limit : {120, 180, 200, 220, 240, 260, 1200}) {
    const char* const command = limit == 220 ? "check" : "solve";
    const auto outcome = gavrelCli({command, folder / "lattice.json"}, {.addressSpace = limit * mebibyte});
    if (outcome.status == 0) continue;
    ++failed;
    EXPECT_EQ(outcome.status, 1) << limit << outcome.errors;
    EXPECT_THAT(outcome.errors, testing::MatchesRegex("(Failed to load project: n|N)ot enough memory.?\n"));
  }
  EXPECT_GT(failed, 1);
  EXPECT_LT(failed, 7);
}
#endif

TEST(Solve, SumsUpTheGreatestDisplacementAndForces) {
  const TemporaryFolder folder;
  Project fan("Fan");
  fan.addNode({0, 0, 0});
  fan.setLoadAndRestraint(0, {}, true, true, true);
  for (const double load : {5.0, -3.0, 20.0, -8.0, 19.0}) {
    const std::int64_t node = fan.nodeCount();
    fan.addNode({2, 0, 0});
    addBar(fan, 0, node, 2000);
    fan.setLoadAndRestraint(node, {load, 0, 0}, false, true, true);
  }
  const std::string model = folder.put("fan.json", *encodeProject(fan));
  const auto summary = gavrelCli({"solve", model, "--summary"});
  EXPECT_EQ(summary.output, "\n1.0\n0.0\n");
  EXPECT_THAT(summary.errors, testing::MatchesRegex("Project                Fan\n"
                                                    "Structure              6 nodes, 5 bars, 0 beams\n"
                                                    "Solution               converged after 2 steps, [0-9.]+ s\n"
                                                    "Largest displacement   0.02 at node 3\n"
                                                    "Largest tension        20 at bar 2\n"
                                                    "Largest compression    -8 at bar 3\n"));
  fan.F_I.edit().assign(36, 0.0);
  EXPECT_THAT(gavrelCli({"solve", folder.put("fan.json", *encodeProject(fan)), "--summary"}).errors,
              testing::Not(HasSubstr("Largest")));
}
