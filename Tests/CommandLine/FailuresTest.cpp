#include <gmock/gmock.h>

#include <cstdlib>

#include "Tests/CommandLine/Command.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

using testing::HasSubstr;
using testing::StartsWith;

TEST(Failures, WhatIsNoProjectIsRefusedWithItsReasonByEveryCommand) {
  const TemporaryFolder folder;
  folder.put("cut.json", "{\"name\": \"x\",\n \"trussElements\": [{\"id\": 0,");
  for (const auto& [name, reason] : {std::pair{"cut.json", "line 2, column 29"},
                                     {"none.json", "none.json\": No such file or directory"},
                                     {".", "Is a directory"}}) {
    for (const char* command : {"solve", "info", "check", "export --nodes FILE", "import FILE -o OUT --into"}) {
      auto list = words(command);
      std::ranges::replace(list, "FILE", (folder / "x.csv").string());
      std::ranges::replace(list, "OUT", (folder / "out.json").string());
      list.push_back(folder / name);
      const auto outcome = gavrelCli(list);
      EXPECT_EQ(outcome.status, 1) << command;
      EXPECT_EQ(outcome.output, "");
      EXPECT_THAT(outcome.errors, AllOf(StartsWith("Failed to load project: "), HasSubstr(reason)));
    }
  }
}

TEST(Failures, ResultsThatCannotBeWrittenAreReported) {
  const TemporaryFolder folder;
  const std::string model = folder.put("bar.json", singleBarJson());
  const auto outcome = gavrelCli({"solve", model, "-o", folder / "none/result.json"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "") << "solved before it was known whether the result can be kept";
  EXPECT_THAT(outcome.errors, AllOf(StartsWith("Failed to save result: "), HasSubstr("No such file or directory")));
  EXPECT_EQ(gavrelCli({"generate", "dome", "-o", folder / "none/dome.json"}).status, 1);
  for (const std::vector<std::string>& command : std::initializer_list<std::vector<std::string>>{
           {"solve", model}, {"info", model}, {"--help"}, {"--version"}, {"solve", "--help"}}) {
    const auto full = gavrelCli(command, {.outputPath = "/dev/full", .errorsToTerminal = false});
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(full.errors, "Failed to write to standard output.\n");
  }
  const auto toOutput = gavrelCli({"solve", model, "-o", "/dev/stdout"});
  EXPECT_EQ(toOutput.status, 0);
  EXPECT_THAT(toOutput.output, StartsWith("\n1.0\n0.0\n{\n  \"name\": \"Single bar\","));
}

TEST(Failures, AResultIsWholeOrAsBeforeWhenTheReaderOfTheOutputGoes) {
  const TemporaryFolder folder;
  folder.put("bar.json", singleBarJson());
  folder.put("result.json", "old");
  const std::string cli = GAVREL_CLI;
  const std::string inFolder = "cd " + folder.path().string() + " && ";
  // The reader is gone before the first line is written.
  const std::string lines =
      "{ sleep 0.3; " + cli + " solve bar.json -o result.json 2>errors; echo $? >status; } | true";
  ASSERT_EQ(std::system((inFolder + lines + "; while [ ! -s status ]; do sleep 0.1; done").c_str()), 0);
  EXPECT_EQ(folder.get("status"), "141\n");  // by SIGPIPE
  EXPECT_EQ(folder.get("errors"), "");
  EXPECT_EQ(folder.get("result.json"), "old");
  EXPECT_EQ(folder.entries(), 4);
}
