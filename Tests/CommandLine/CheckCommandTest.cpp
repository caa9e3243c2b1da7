#include <gtest/gtest.h>

#include "Tests/CommandLine/Command.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

TEST(Check, TellsWhatItFindsAndWithWhichStatus) {
  const TemporaryFolder folder;
  const auto sound = gavrelCli({"check", folder.put("bar.json", singleBarJson())});
  EXPECT_EQ(sound.status, 0);
  EXPECT_EQ(sound.output, "Nothing found: the structure can be solved.\n");

  const std::string drifting = folder.put("drift.json", singleBarJson(5));
  const auto found = gavrelCli({"check", drifting});
  EXPECT_EQ(found.status, 3);
  EXPECT_EQ(found.errors, "");
  EXPECT_EQ(found.output,
            "Never converges: Loads on supports\n"
            "  A restrained direction of node 1 carries a load, which moves it further in each step, and the solve "
            "never converges: remove the load or the restraint.\n"
            "1 finding\n");
  const auto forScripts = gavrelCli({"check", "--json", drifting});
  EXPECT_EQ(forScripts.status, 3);
  EXPECT_EQ(withoutSpace(forScripts.output),
            R"([{"consequence":"Neverconverges","title":"Loadsonsupports","text":"Arestraineddirectionofnode1carriesa)"
            R"(load,whichmovesitfurtherineachstep,andthesolveneverconverges:removetheloadortherestraint.",)"
            R"("nodes":[1],"trusses":[],"beams":[]}])");

  std::string doubtful = singleBarJson();
  const std::string bar = doubtful.substr(doubtful.find('{', 1), doubtful.find('}') + 1 - doubtful.find('{', 1));
  doubtful.insert(doubtful.find('}') + 1, "," + bar);
  const auto solvable = gavrelCli({"check", folder.put("twice.json", doubtful)});
  EXPECT_EQ(solvable.status, 0);
  EXPECT_EQ(
      solvable.output,
      "Doubtful: Repeated bars\n"
      "  With bar 1 the same two nodes are joined again, so that the stiffness counts twice: take one out of the file, "
      "unless you meant that.\n"
      "1 finding, but the structure can be solved\n");
}
