#include <gmock/gmock.h>

#include <filesystem>

#include "Tests/CommandLine/Command.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

using testing::HasSubstr;

TEST(Import, AddsTablesToANewProjectOrAnOldOne) {
  const TemporaryFolder folder;
  folder.put("bar.json", singleBarJson());
  ASSERT_EQ(
      gavrelCli({"export", folder / "bar.json", "--nodes", folder / "nodes.csv", "--elements", folder / "elements.csv"})
          .status,
      0);
  const auto imported = gavrelCli(
      {"import", folder / "nodes.csv", folder / "elements.csv", "-o", folder / "new.json", "--name", "Again"});
  EXPECT_EQ(imported.status, 0) << imported.errors;
  EXPECT_EQ(imported.output, "Imported 2 nodes, 1 bars, 0 beams\n");
  EXPECT_EQ(gavrelCli({"solve", folder / "new.json"}).output, "\n1.0\n0.0\n");
  const auto more =
      gavrelCli({"import", "--into", folder / "new.json", folder / "elements.csv", "-o", folder / "new.json"});
  EXPECT_EQ(more.output, "Imported 0 nodes, 1 bars, 0 beams\n");
  EXPECT_THAT(folder.get("new.json"), HasSubstr("\"name\": \"Again\""));
  const auto bad = gavrelCli({"import", folder.put("bad.csv", "x,y\n1,2,3\n"), "-o", folder / "bad.json"});
  EXPECT_EQ(bad.status, 1);
  EXPECT_EQ(bad.errors, "Failed to import: bad.csv, line 2: 3 values for 2 columns\n");
  EXPECT_FALSE(std::filesystem::exists(std::string(folder / "bad.json")));
}
