#include <gmock/gmock.h>

#include "DataModel/ProjectFile.h"
#include "Tests/CommandLine/Command.h"
#include "Tests/TemporaryFolder.h"

TEST(Generated, StructuresAreStableAndCarryTheirLoad) {
  const TemporaryFolder folder;
  for (const std::string kind :
       {"lattice", "lattice -n 2 --spacing 0.5", "lattice --non-linear", "bridge", "bridge --panels 2",
        "bridge --panels 7 --non-linear", "tower", "tower --sections 1 --top-width 6", "tower --compression-only",
        "dome", "dome --rise 15 --segments 3 --rings 2", "dome --rings 10 --non-linear", "cable-net",
        "cable-net --linear --cells 3", "cable-net --vault"}) {
    SCOPED_TRACE(kind);
    const std::string end = " --load 3 -4 -50 --output " + (folder / "model.json").string();
    const auto generated = gavrelCli(words("generate " + kind + end));
    ASSERT_EQ(generated.status, 0) << generated.errors;
    EXPECT_EQ(generated.output + generated.errors, "");

    const auto project = *readProject(folder / "model.json");
    double total[dofsPerNode] = {};
    for (std::size_t i = 0; i < project->F_I->size(); ++i) total[i % dofsPerNode] += (*project->F_I)[i];
    EXPECT_THAT(total, testing::Pointwise(testing::DoubleNear(1e-9), {3.0, -4.0, -50.0, 0.0, 0.0, 0.0}));
    EXPECT_EQ(gavrelCli({"solve", "--strict", folder / "model.json"}).status, 0);
  }
}
