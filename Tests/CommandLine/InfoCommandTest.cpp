#include <gmock/gmock.h>

#include "DataModel/ProjectFile.h"
#include "Tests/CommandLine/Command.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

using testing::HasSubstr;

namespace {

/// Two bars, one of them without length and one to a node that does not exist; node 2 belongs to no element.
std::string faultyJson() {
  Project project("Faulty");
  for (const Vector3& at : {Vector3{-1, 0, 2}, Vector3{3, 0, 2}, Vector3{0, 5, 0}}) project.addNode(at);
  auto& bars = project.trussElements.edit();
  testing::internal::CaptureStdout();
  bars.emplace_back(0, 0, 1, Vector3{}, Vector3{}, 1.0, 1.0, true, true);
  testing::internal::GetCapturedStdout();
  bars.emplace_back(1, 0, 7, Vector3{}, Vector3{1, 0, 0}, 1.0, 1.0, false, false);
  project.setLoadAndRestraint(0, {1, 2, 3}, false, true, false);
  project.setLoadAndRestraint(1, {10, 20, 30}, false, false, false);
  project.F_I.edit()[1] = 100;
  return *encodeProject(project);
}

}  // namespace

TEST(Info, KeepsANameInItsLine) {
  const TemporaryFolder folder;
  std::string json = singleBarJson();
  json.replace(json.find("Single bar"), 10, R"(A\n\u001b[2J\u009b\u202eB)");
  const std::string model = folder.put("a\nNodes  9.json", json);
  EXPECT_THAT(gavrelCli({"info", model}).output,
              testing::StartsWith("Project                 A\\n\\x1b[2J\\u009b\\u202eB\nNodes                   2\n"));
  EXPECT_THAT(gavrelCli({"solve", "--summary", model}).errors,
              testing::StartsWith("Project                A\\n\\x1b[2J\\u009b\\u202eB\nStructure"));
  EXPECT_THAT(gavrelCli({"info", "--json", model}).output, HasSubstr("\"name\": \"A\\n\\u001b[2J\\u009b\u202eB\""));
  EXPECT_THAT(gavrelCli({"info", model + "\x1b"}).errors, HasSubstr("a\\nNodes  9.json\\x1b\": No such file"));
  EXPECT_THAT(gavrelCli({"info", model, "x\x1b"}).errors, HasSubstr("x\\x1b"));
}

TEST(Info, DescribesTheModelAndItsMistakes) {
  const TemporaryFolder folder;
  const std::string faulty = folder.put("faulty.json", faultyJson());
  const auto outcome = gavrelCli({"info", faulty});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(outcome.output,
            "Project                 Faulty\n"
            "Nodes                   3\n"
            "Bars                    2 (1 non-linear, 1 compression-only)\n"
            "Beams                   0\n"
            "Extents                 (-1.0, 0.0, 0.0) to (3.0, 5.0, 2.0)\n"
            "Degrees of freedom      18, 1 restrained, 6 loaded\n"
            "Total load              (11.0, 120.0, 33.0)\n"
            "Bars of zero length     1: 0\n"
            "Beams of zero length    none\n"
            "Nodes without elements  1: 2\n"
            "Note                    1 restrained degrees of freedom carry a load; a solve will not converge\n"
            "Note                    bars with unknown nodes: 1: 1\n");
  const auto forScripts = gavrelCli({"info", "--json", faulty});
  EXPECT_EQ(forScripts.status, 0);
  EXPECT_EQ(
      withoutSpace(forScripts.output),
      R"({"name":"Faulty","nodes":3,"trusses":2,"compressionOnlyTrusses":1,"nonLinearTrusses":1,"beams":0,)"
      R"("extents":[[-1,0,0],[3,5,2]],"degreesOfFreedom":18,"restrainedDofs":1,"loadedDofs":6,)"
      R"("loadedRestrainedDofs":1,"totalLoad":[11,120,33],"zeroLengthTrusses":[0],"zeroLengthBeams":[],)"
      R"("nodesWithoutElements":[2],"trussesWithUnknownNodes":[1],"beamsWithUnknownNodes":[],"arrayMisfits":[]})");
  std::string unfit = faultyJson();
  unfit.insert(unfit.find("\"D_I\": [") + 8, "true, true,");
  const std::string unfitFile = folder.put("unfit.json", unfit);
  EXPECT_THAT(gavrelCli({"info", unfitFile}).output,
              testing::EndsWith("Note                    D_I has 20 entries, where 3 nodes have 18\n"));
  EXPECT_THAT(withoutSpace(gavrelCli({"info", "--json", unfitFile}).output),
              HasSubstr(R"("arrayMisfits":[{"array":"D_I","entries":20,"wanted":18}]})"));
  const std::string empty = folder.put("empty.json", *encodeProject(Project("Empty")));
  EXPECT_THAT(gavrelCli({"info", empty}).output, HasSubstr("Extents                 none\n"));
  EXPECT_THAT(gavrelCli({"info", "--json", empty}).output, HasSubstr("\"extents\": [],"));
}
