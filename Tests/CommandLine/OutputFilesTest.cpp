#include "Platform/OutputFiles.h"

#include <gmock/gmock.h>

#include <cstdlib>

#include "Tests/CommandLine/Command.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

using testing::HasSubstr;
using testing::StartsWith;

TEST(OutputFiles, WhatIsReadOrIsToBeWrittenTwiceIsRefusedBeforeTheWork) {
  const TemporaryFolder folder;
  const std::string model = singleBarJson(), table = "node,x,y,z\n0,0,0,0\n1,1,0,0\n";
  folder.put("m.json", model);
  folder.put("in.csv", table);
  std::filesystem::create_hard_link(folder / "m.json", folder / "hard");
  std::filesystem::create_symlink("m.json", folder / "soft");
  std::filesystem::create_symlink("new", folder / "dangling");
  const std::string inFolder = "cd " + folder.path().string() + " && " GAVREL_CLI " ";
  const auto runForStatus = [&](const std::string& command) {
    return std::system((inFolder + command + " 2>errors >output").c_str()) >> 8;
  };
  for (const char* refused :
       {"solve m.json -o ./m.json", "solve m.json -o hard", "solve soft -o m.json", "export m.json --nodes soft",
        "export soft --vtu soft", "export m.json --elements hard", "export m.json --png m.json",
        "export m.json --nodes new --vtu dangling", "export m.json --nodes new --elements ./new",
        "import in.csv -o in.csv", "solve /dev/stdin -o m.json <m.json", "solve m.json -o /dev/fd/3 3>>m.json",
        "generate dome -o none/new", "import in.csv -o none/new", "export m.json --nodes new --vtu none/new"}) {
    EXPECT_EQ(runForStatus(refused), 1) << refused;
    EXPECT_THAT(folder.get("errors"), testing::MatchesRegex("[^\n]*cannot (write|create)[^\n]*\n")) << refused;
    EXPECT_EQ(folder.get("output"), "") << refused;
    EXPECT_EQ(folder.get("m.json"), model) << refused;
    EXPECT_EQ(folder.get("in.csv"), table) << refused;
    EXPECT_EQ(folder.entries(), 7) << refused;
  }
  EXPECT_EQ(runForStatus("export m.json --nodes /dev/null --vtu /dev/null"), 0);
  EXPECT_EQ(runForStatus("import in.csv --into m.json -o m.json"), 0) << "what is added to may be written";
  EXPECT_THAT(folder.get("output"), StartsWith("Imported 2 nodes"));
}

TEST(OutputFiles, AnOutputThatIsAnOpenDescriptorIsWrittenBehindWhatStandsThere) {
  const TemporaryFolder folder;
  folder.put("m.json", singleBarJson());
  const std::string lines = "\n1.0\n0.0\n", result = "{\n  \"name\": \"Single bar\",";
  const std::string shell = "bash -c 'cd " + folder.path().string() + " && ", solve = GAVREL_CLI " solve m.json -o ";
  for (const auto& [command, expected] :
       {std::pair{solve + "/dev/stdout >>log", "former\n" + lines + result},
        {solve + "/proc/self/fd/1 >>log", "former\n" + lines + result},
        {solve + "/dev/fd/3 3>>log >lines", "former\n" + result},
        {"exec 3>>log; " + solve + "/proc/$$/fd/3 >lines; exit 0", "former\n" + result},  // another process's
        {"{ echo first; " + solve + "/dev/stdout; } >log", "first\n" + lines + result},
        {solve + "/dev/stdout | cat >log", lines + result}}) {
    folder.put("log", "former\n");
    EXPECT_EQ(std::system((shell + command + "'").c_str()), 0) << command;
    EXPECT_THAT(folder.get("log"), AllOf(StartsWith(expected), testing::EndsWith("\n}\n"))) << command;
  }
  for (const char* unwritable : {"/dev/fd/9", "/dev/stdin </dev/null"})
    EXPECT_NE(std::system((shell + solve + unwritable + " 2>errors'").c_str()), 0) << unwritable;
  EXPECT_THAT(folder.get("errors"), HasSubstr("cannot write \"/dev/stdin\": Bad file descriptor"));
}

/// Each command that writes, on a disk with room for 4096 bytes more; it must have taken up with the signals, too, of
/// which the first to come here would end it. What they may interrupt is tested with AtomicFile.
class FullDisk : public testing::TestWithParam<const char*> {};

TEST_P(FullDisk, LeavesTheOldFileAndNothingElse) {
  const TemporaryFolder folder;
  const std::string shell = "cd " + folder.path().string() + " && ", cli = GAVREL_CLI " ";
  ASSERT_EQ(std::system((shell + cli + "generate tower --sections 200 -o model").c_str()), 0);
  ASSERT_EQ(std::system((shell + cli + "export model --unsolved --nodes nodes.csv").c_str()), 0);
  folder.put("target", "former");
  const std::string limited = shell + "ulimit -f 8; " + cli + GetParam() + " target >/dev/null 2>errors";
  EXPECT_EQ(std::system(limited.c_str()), 1 << 8) << folder.get("errors");
  EXPECT_THAT(folder.get("errors"), HasSubstr("File too large"));
  EXPECT_EQ(folder.get("target"), "former");
  EXPECT_EQ(folder.entries(), 4);
}

INSTANTIATE_TEST_SUITE_P(Commands, FullDisk,
                         testing::Values("solve model -o", "generate tower --sections 200 -o", "import nodes.csv -o",
                                         "export model --unsolved --nodes", "export model --unsolved --elements",
                                         "export model --vtu"));
INSTANTIATE_TEST_SUITE_P(Pictures, FullDisk, testing::Values("export model --unsolved --png"));
