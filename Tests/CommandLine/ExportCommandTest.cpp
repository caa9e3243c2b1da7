#include <gmock/gmock.h>

#include <filesystem>

#include "Tests/CommandLine/Command.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

using testing::HasSubstr;

TEST(Export, WritesWhatIsAskedForOfASolvedStructureOrNothing) {
  const TemporaryFolder folder;
  const std::string model = folder.put("bar.json", singleBarJson());
  const auto exported = gavrelCli({"export", model, "--nodes", folder / "nodes.csv", "--elements",
                                   folder / "elements.csv", "--vtu", folder / "bar.vtu"});
  EXPECT_EQ(exported.status, 0) << exported.errors;
  EXPECT_EQ(exported.output, "\n1.0\n0.0\n");
  EXPECT_THAT(folder.get("nodes.csv"), HasSubstr(",y z,0.02,0.0,"));
  EXPECT_THAT(folder.get("elements.csv"), HasSubstr("bar,0,0,1,2.0,0.01,20.0,"));
  EXPECT_THAT(folder.get("bar.vtu"), HasSubstr("AppendedData"));
  EXPECT_EQ(gavrelCli({"export", model, "--unsolved", "--nodes", folder / "nodes.csv"}).output, "");
  EXPECT_THAT(folder.get("nodes.csv"), testing::EndsWith(",y z,,,,,,\n"));
  EXPECT_EQ(gavrelCli({"export", model}).status, 64);
  EXPECT_EQ(gavrelCli({"export", model, "--vtu", folder / "none" / "bar.vtu"}).status, 1);

  const auto piped = gavrelCli({"export", "/dev/null", "--png", folder / "p.png", "--nodes", folder / "p.csv"});
  EXPECT_EQ(piped.status, 1);
  EXPECT_EQ(piped.errors, "No picture: \"/dev/null\" is no regular file, and --png reads it twice\n");
  EXPECT_FALSE(std::filesystem::exists(std::string(folder / "p.csv")));

  std::string surplus = singleBarJson();
  surplus.insert(surplus.find("\"F_I\": [") + 8, "0,");
  const auto warned =
      gavrelCli({"export", "--unsolved", folder.put("surplus.json", surplus), "--vtu", folder / "surplus.vtu"});
  EXPECT_EQ(warned.errors,
            "Warning: F_I has 13 entries, where 2 nodes have 12; the files have what belongs to nodes\n");
}
