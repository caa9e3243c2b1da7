#include <gmock/gmock.h>

#include "Tests/CommandLine/Command.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

TEST(Usage, EveryCommandHasHelpWithAnExample) {
  for (const char* command : {"", "solve", "info", "generate", "generate lattice", "generate bridge", "generate tower",
                              "generate dome", "generate cable-net"}) {
    const auto outcome = gavrelCli(words(std::string(command) + " --help"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, testing::HasSubstr("Example:\n  gavrel-cli "));
  }
  const std::string bridge = gavrelCli({"generate", "bridge", "--help"}).output;
  for (const char* default_ :
       {"--load FX FY FZ=[0 0 -1000] ", "--span FLOAT=40 ", "--panels INT:INT in [2 - 100000]=8"})
    EXPECT_THAT(bridge, testing::HasSubstr(default_));
  for (const char* default_ : {"--area FLOAT=25 ", "--modulus FLOAT=100000 "})
    EXPECT_THAT(gavrelCli({"import", "--help"}).output, testing::HasSubstr(default_));
  const auto version = gavrelCli({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_THAT(version.output, testing::MatchesRegex("gavrel-cli [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(Usage, ACommandLineThatIsNotUnderstoodWritesNothing) {
  const TemporaryFolder folder;
  for (const char* arguments : {"",
                                "fly",
                                "solve",
                                "solve a.json b.json",
                                "generate",
                                "generate dome",
                                "generate dome --span -3 -o FILE",
                                "generate dome --span nan -o FILE",
                                "generate dome -o FILE --load 1 2",
                                "generate dome --load 1 2 inf -o FILE",
                                "generate dome --rise 16 --span 30 -o FILE",
                                "generate lattice --nodes 1 -o FILE",
                                "generate lattice --nodes 3.5 -o FILE",
                                "generate lattice --nodes 0x9 -o FILE",
                                "import FILE -o FILE --area 1,5",
                                "import FILE --into EMPTY -o FILE",
                                "import FILE EMPTY -o FILE",
                                "generate dome -o EMPTY",
                                "solve EMPTY",
                                "solve FILE -o EMPTY",
                                "check EMPTY",
                                "info EMPTY",
                                "export FILE --nodes EMPTY",
                                "export FILE --elements EMPTY",
                                "export FILE --vtu EMPTY",
                                "export FILE --png EMPTY",
                                "export EMPTY --nodes FILE",
                                "export FILE --png FILE --size 0x0",
                                "export FILE --png FILE --size 16385x5",
                                "export FILE --png FILE --size 8x8x8"}) {
    auto list = words(arguments);
    std::ranges::replace(list, "EMPTY", "");
    std::ranges::replace(list, "FILE", (folder / "x.json").string());
    const auto outcome = gavrelCli(list);
    EXPECT_EQ(outcome.status, 64) << arguments;
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, testing::HasSubstr(std::ranges::count(list, "") > 0 ? "a file name is empty" : "\n"));
  }
  EXPECT_EQ(folder.entries(), 0);
}

TEST(Usage, ArgumentsAreShownInOneShortLine) {
  const std::string forged = "x\nFatal error\x1b[31m", shown = "x\\nFatal error\\x1b[31m", tooLong(10000, 'y');
  for (const auto& [arguments, part] : std::vector<std::pair<std::vector<std::string>, std::string>>{
           {{"solve", "--" + forged, "a"}, "--" + shown},
           {{"solve", "a", tooLong}, "yyy…"},
           {{"generate", "dome", "-o", "x", "--span", forged}, shown + "\" is not a positive number"},
           {{"generate", "dome", "-o", "x", "--rings=" + tooLong}, "yyy…\" is not a whole number in [1 - 500]"}}) {
    const auto outcome = gavrelCli(arguments);
    EXPECT_EQ(outcome.status, 64);
    EXPECT_LT(outcome.errors.size(), 300);
    EXPECT_THAT(outcome.errors, testing::HasSubstr(part + "\nRun with --help for more information.\n"));
    EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 2);
  }
}

TEST(Usage, NumbersAreReadInDecimalAndRoundedOnce) {
  const TemporaryFolder folder;
  const std::string file = folder / "x.json";
  // Half way between 1 and the next double, and a little more.
  const std::string area = "1.000000000000000111022302462515654042363166809082031250000000000001";
  ASSERT_EQ(gavrelCli({"generate", "lattice", "--nodes", "010", "--area", area, "-o", file}).status, 0);
  EXPECT_THAT(folder.get("x.json"), testing::HasSubstr("\"area\": 1.0000000000000002,"));
  EXPECT_THAT(gavrelCli({"info", file}).output, testing::HasSubstr("Nodes                   1000\n"));
}
