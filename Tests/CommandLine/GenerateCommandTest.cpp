#include <gmock/gmock.h>

#include "DataModel/ProjectFile.h"
#include "DataModel/Solver.h"
#include "Tests/CommandLine/Command.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

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

/// What one needs to know of a structure to draw it: the figures are worked out from the description of each kind.
TEST(Generated, StructuresHaveTheirShape) {
  const TemporaryFolder folder;
  const struct {
    const char* arguments;
    std::int64_t nodes, bars, held, loaded;  // nodes that are held and loaded
    double length;                           // of all bars
    Vector3 low, high;
  } cases[] = {
      {"lattice -n 3 --spacing 0.5", 27, 126, 9, 9, 77.9116882, {0, 0, 0}, {1, 1, 1}},
      {"bridge --span 20 --panels 4 --width 3 --height 2", 16, 43, 4, 6, 184.8836837, {0, 0, 0}, {20, 3, 2}},
      {"tower --height 10 --sections 2 --base-width 4 --top-width 2",
       12,
       34,
       4,
       4,
       161.3587711,
       {-2, -2, 0},
       {2, 2, 10}},
      {"dome --span 8 --rise 2 --rings 2 --segments 4", 9, 20, 4, 5, 69.5351853, {-4, -4, 0}, {4, 4, 2}},
      {"cable-net --span 8 --cells 4 --sag 1", 25, 56, 16, 9, 127.3426333, {0, 0, -1}, {8, 8, 0}},
      {"cable-net --span 8 --cells 4 --sag 1 --vault", 25, 56, 16, 9, 127.3426333, {0, 0, 0}, {8, 8, 1}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.arguments);
    const std::string options = " --area 3 --modulus 7 --load 0 0 -6 -o " + (folder / "m.json").string();
    ASSERT_EQ(gavrelCli(words("generate " + std::string(c.arguments) + options)).status, 0);
    const auto project = *readProject(folder / "m.json");
    EXPECT_EQ(std::ssize(*project->trussElements), c.bars);
    double total = 0;
    for (const TrussElement& bar : *project->trussElements) {
      const double L = length({bar.dXx, bar.dXy, bar.dXz});
      total += L;
      EXPECT_NEAR(bar.EAL3, 21 / (L * L * L), 1e-12);
      EXPECT_EQ(bar.isNonLinear, std::string(c.arguments).starts_with("cable"));
    }
    EXPECT_NEAR(total, c.length, 1e-7);
    Vector3 low{9, 9, 9}, high{-9, -9, -9};
    std::int64_t held = 0, loaded = 0;
    for (std::int64_t node = 0; node < project->nodeCount(); ++node) {
      const Vector3 at = *project->getNodeCoordinates(node);
      low = {std::min(low.x, at.x), std::min(low.y, at.y), std::min(low.z, at.z)};
      high = {std::max(high.x, at.x), std::max(high.y, at.y), std::max(high.z, at.z)};
      const auto z = static_cast<std::size_t>(6 * node + 2);
      held += (*project->D_I)[z];
      if ((*project->F_I)[z] == 0) continue;
      ++loaded;
      EXPECT_NEAR((*project->F_I)[z], -6.0 / static_cast<double>(c.loaded), 1e-12);
    }
    EXPECT_EQ(project->nodeCount(), c.nodes);
    EXPECT_EQ(held, c.held);
    EXPECT_EQ(loaded, c.loaded);
    EXPECT_LT(length(low - c.low) + length(high - c.high), 1e-9);
  }
}

TEST(Generated, DiagonalsOfABridgeArePulledAndStrutsOfATowerCarryNoTension) {
  const TemporaryFolder folder;
  const auto solved = [&folder](const std::string& kind) {
    EXPECT_EQ(gavrelCli(words("generate " + kind + " -o " + (folder / "m.json").string())).status, 0);
    auto project = *readProject(folder / "m.json");
    EXPECT_FALSE(Solver(*project).Solve().fault);
    return project;
  };
  const auto bridge = solved("bridge --panels 8");
  int diagonals = 0;
  for (const TrussElement& bar : *bridge->trussElements) {
    const double x = bridge->getNodeCoordinates(bar.startNodeId)->x, end = bridge->getNodeCoordinates(bar.endNodeId)->x;
    if (bar.dXx == 0 || bar.dXy != 0 || bar.dXz == 0 || std::min(x, end) == 0 || std::max(x, end) == 40) continue;
    ++diagonals;
    EXPECT_GT(bar.axialForce(), 0) << bar.id;
  }
  EXPECT_EQ(diagonals, 12);
  EXPECT_EQ(std::ranges::count(*solved("tower --sections 3")->trussElements, true, &TrussElement::isCompressionOnly),
            0);
  const auto tower = solved("tower --sections 3 --compression-only");
  EXPECT_EQ(std::ranges::count(*tower->trussElements, true, &TrussElement::isCompressionOnly), 3 * 8);
}
