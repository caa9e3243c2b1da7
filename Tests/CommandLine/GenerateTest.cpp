#include <gmock/gmock.h>

#include "CommandLine/Structures/Lattice.h"
#include "DataModel/ProjectFile.h"
#include "Tests/CommandLine/Command.h"
#include "Tests/TemporaryFolder.h"

class Generated : public testing::TestWithParam<std::vector<std::string>> {};

TEST_P(Generated, StructuresAreStableAndCarryTheirLoad) {
  const TemporaryFolder folder;
  std::vector<std::string> arguments{"generate"};
  arguments.insert(arguments.end(), GetParam().begin(), GetParam().end());
  arguments.insert(arguments.end(), {"--load", "3", "-4", "-50", "--output", folder / "model.json"});
  const auto generated = gavrelCli(arguments);
  ASSERT_EQ(generated.status, 0) << generated.errors;
  EXPECT_EQ(generated.output + generated.errors, "");

  const auto project = *readProject(folder / "model.json");
  Vector3 total;
  for (std::size_t i = 0; i < project->F_I->size(); i += dofsPerNode) {
    total.x += (*project->F_I)[i];
    total.y += (*project->F_I)[i + 1];
    total.z += (*project->F_I)[i + 2];
  }
  EXPECT_NEAR(total.x, 3, 1e-9);
  EXPECT_NEAR(total.y, -4, 1e-9);
  EXPECT_NEAR(total.z, -50, 1e-9);
  EXPECT_EQ(gavrelCli({"solve", "--strict", folder / "model.json"}).status, 0);
}

using Arguments = std::vector<std::string>;
INSTANTIATE_TEST_SUITE_P(
    Kinds, Generated,
    testing::Values(Arguments{"lattice"}, Arguments{"lattice", "-n", "2", "--spacing", "0.5"},
                    Arguments{"lattice", "--non-linear"}, Arguments{"bridge"}, Arguments{"bridge", "--panels", "2"},
                    Arguments{"bridge", "--panels", "7", "--non-linear"}, Arguments{"tower"},
                    Arguments{"tower", "--sections", "1", "--top-width", "6"}, Arguments{"tower", "--compression-only"},
                    Arguments{"dome"}, Arguments{"dome", "--rise", "15", "--segments", "3", "--rings", "2"},
                    Arguments{"dome", "--rings", "10", "--non-linear"}, Arguments{"cable-net"},
                    Arguments{"cable-net", "--linear", "--cells", "3"}, Arguments{"cable-net", "--vault"}));

TEST(Generated, LatticeHasItsNodesBarsAndSupports) {
  for (const int n : {2, 5}) {
    Lattice lattice;
    lattice.nodesPerEdge = n;
    const auto project = lattice.build();
    EXPECT_EQ(project->nodeCount(), n * n * n);
    EXPECT_EQ(std::ssize(*project->trussElements), 3 * n * n * (n - 1) + 6 * n * (n - 1) * (n - 1));
    EXPECT_EQ(std::ranges::count(*project->D_I, true), 3 * n * n);
  }
}
