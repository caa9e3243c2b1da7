#include <gmock/gmock.h>

#include "Tests/CommandLine/Command.h"
#include "Tests/TemporaryFolder.h"

using testing::HasSubstr;
using testing::StartsWith;

struct BadFile {
  const char* name;
  const char* content;
  const char* reason;
};

class UnreadableProject : public testing::TestWithParam<BadFile> {};

TEST_P(UnreadableProject, IsRefusedWithItsReasonByEveryCommand) {
  const TemporaryFolder folder;
  const std::string model = folder.put("model.json", GetParam().content);
  for (const char* command : {"solve", "info"}) {
    const auto outcome = gavrelCli({command, model});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, StartsWith("Failed to load project: "));
    EXPECT_THAT(outcome.errors, HasSubstr(GetParam().reason));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Content, UnreadableProject,
    testing::Values(BadFile{"Empty", "", "line 1, column 1"},
                    BadFile{"CutShort", "{\"name\": \"x\",\n \"trussElements\": [{\"id\": 0,", "line 2, column 29"},
                    BadFile{"NoObject", "[1, 2]", "expected an object, found an array"},
                    BadFile{"KeyMissing", "{\"name\": \"x\", \"trussElements\": []}", "\"X_I\" is missing"},
                    BadFile{"FieldOfElement", "{\"name\": \"x\", \"trussElements\": [{\"id\": 0.5}]}",
                            "trussElements[0].id: expected a whole number, found the number 0.5"}),
    [](const auto& test) { return test.param.name; });

TEST(Files, MissingFilesAndFoldersAreNoProjects) {
  const TemporaryFolder folder;
  const auto missing = gavrelCli({"solve", folder / "none.json"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_THAT(missing.errors, HasSubstr("none.json\": No such file or directory"));
  const auto aFolder = gavrelCli({"solve", folder.path()});
  EXPECT_EQ(aFolder.status, 1);
  EXPECT_THAT(aFolder.errors, HasSubstr("Is a directory"));
}

TEST(Files, ResultsThatCannotBeWrittenAreReported) {
  const TemporaryFolder folder;
  const std::string model = folder.put("bar.json", singleBarJson());
  const auto outcome = gavrelCli({"solve", model, "-o", folder / "none/result.json"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "") << "solved before it was known whether the result can be kept";
  EXPECT_THAT(outcome.errors, StartsWith("Failed to save result: "));
  EXPECT_THAT(outcome.errors, HasSubstr("No such file or directory"));
  EXPECT_EQ(gavrelCli({"generate", "dome", "-o", folder / "none/dome.json"}).status, 1);
}

TEST(Files, AFullStandardOutputIsAnError) {
  const TemporaryFolder folder;
  const std::string model = folder.put("bar.json", singleBarJson());
  for (const char* command : {"solve", "info"}) {
    const auto outcome = gavrelCli({command, model}, {.outputPath = "/dev/full", .errorsToTerminal = false});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "Failed to write to standard output.\n");
  }
}

TEST(Files, ResultsCanGoToStandardOutput) {
  const TemporaryFolder folder;
  const auto outcome = gavrelCli({"solve", folder.put("bar.json", singleBarJson()), "-o", "/dev/stdout"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.output, StartsWith("\n1.0\n0.0\n{\n  \"name\": \"Single bar\","));
}
