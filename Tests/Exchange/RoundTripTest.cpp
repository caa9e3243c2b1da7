#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <random>

#include "Exchange/Export.h"
#include "Exchange/Import.h"
#include "Tests/Structures.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

/// That the project's tables make the same of an empty project.
void expectToComeBack(const Project& project) {
  const TemporaryFolder folder;
  Project back;
  EXPECT_FALSE(exportNodes(project, folder / "nodes.csv"));
  EXPECT_FALSE(exportElements(project, folder / "elements.csv"));
  const auto outcome = importFiles(back, {folder / "nodes.csv", folder / "elements.csv"}, {.isNonLinear = true});
  EXPECT_TRUE(outcome) << outcome.failure().reason;
  EXPECT_EQ(*back.X_I, *project.X_I);
  EXPECT_EQ(*back.F_I, *project.F_I);
  EXPECT_EQ(*back.D_I, *project.D_I);
  EXPECT_EQ(*back.trussElements, *project.trussElements);
  EXPECT_EQ(*back.beamElements, *project.beamElements);
}

/// A structure with elements of all kinds and numbers of all sizes.
std::shared_ptr<Project> drawn(unsigned seed) {
  std::mt19937 generator(seed);
  const auto part = [&] { return std::uniform_real_distribution<>(0, 1)(generator); };
  const auto whole = [&](int least, int most) { return std::uniform_int_distribution<>(least, most)(generator); };
  const auto number = [&] {
    const double size = std::ldexp(part() - 0.5, part() < 0.5 ? 10 : whole(-150, 150));
    return part() < 0.2 ? whole(-3, 3) : part() < 0.05 ? -0.0 : size;
  };
  auto project = std::make_shared<Project>();
  const int nodes = whole(0, 6);
  for (int node = 0; node < nodes; ++node) project->addNode({number(), number(), number()});
  for (double& load : project->F_I.edit()) load = part() < 0.5 ? 0 : number();
  for (auto held : project->D_I.edit()) held = part() < 0.3;
  auto& bars = project->trussElements.edit();
  auto& beams = project->beamElements.edit();
  for (int i = nodes > 0 ? whole(0, 12) : 0; i > 0; --i) {
    const int a = whole(0, nodes - 1), b = whole(0, nodes - 1);
    const auto A = *project->getNodeCoordinates(a), B = *project->getNodeCoordinates(b);
    if (part() < 0.6)
      bars.emplace_back(std::ssize(bars), a, b, A, B, number(), number(), part() < 0.3, part() < 0.5);
    else
      beams.emplace_back(std::ssize(beams), a, b, A, B, number(), number(), number(), number(), number(), part() < 0.5);
  }
  return project;
}

}  // namespace

TEST(RoundTrip, TablesKeepRandomStructures) {
  const char* asked = std::getenv("GAVREL_RANDOM_STRUCTURES");
  const unsigned count = asked != nullptr ? static_cast<unsigned>(std::atoi(asked)) : 40;
  for (unsigned seed = 1; seed <= count && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    expectToComeBack(*drawn(seed));
  }
}
