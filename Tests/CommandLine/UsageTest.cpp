#include <gmock/gmock.h>

#include "Tests/CommandLine/Command.h"
#include "Tests/TemporaryFolder.h"

using testing::HasSubstr;
using testing::StartsWith;

TEST(Usage, EveryCommandHasHelpWithAnExample) {
  for (const std::vector<std::string>& command : {std::vector<std::string>{},
                                                  {"solve"},
                                                  {"info"},
                                                  {"generate"},
                                                  {"generate", "lattice"},
                                                  {"generate", "bridge"},
                                                  {"generate", "tower"},
                                                  {"generate", "dome"},
                                                  {"generate", "cable-net"}}) {
    std::vector<std::string> arguments = command;
    arguments.emplace_back("--help");
    const auto outcome = gavrelCli(arguments);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("Example:\n  gavrel-cli "));
  }
}

TEST(Usage, VersionIsOneLine) {
  const auto outcome = gavrelCli({"--version"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.output, testing::MatchesRegex("gavrel-cli [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(Usage, ACommandLineThatIsNotUnderstoodWritesNothing) {
  const TemporaryFolder folder;
  const std::string file = folder / "x.json";
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{},
                                                    {"fly"},
                                                    {"solve"},
                                                    {"solve", "a.json", "b.json"},
                                                    {"generate"},
                                                    {"generate", "dome"},
                                                    {"generate", "dome", "-o", file, "--span", "-3"},
                                                    {"generate", "dome", "-o", file, "--span", "nan"},
                                                    {"generate", "dome", "-o", file, "--load", "1", "2"},
                                                    {"generate", "dome", "-o", file, "--load", "1", "2", "inf"},
                                                    {"generate", "dome", "-o", file, "--rise", "16", "--span", "30"},
                                                    {"generate", "lattice", "-o", file, "--nodes", "1"}}) {
    const auto outcome = gavrelCli(arguments);
    EXPECT_EQ(outcome.status, 64) << testing::PrintToString(arguments);
    EXPECT_EQ(outcome.output, "");
    EXPECT_NE(outcome.errors, "");
  }
  EXPECT_EQ(folder.entries(), 0);
}
