#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <random>

#include "DataModel/ProjectFile.h"
#include "Exchange/Export.h"
#include "Exchange/Import.h"
#include "Tests/Structures.h"
#include "Tests/TemporaryFolder.h"

namespace {

/// That the project's tables make the same of an empty project.
void expectToComeBack(const Project& project) {
  const TemporaryFolder folder;
  Project back;
  EXPECT_FALSE(exportNodes(project, folder / "nodes.csv"));
  EXPECT_FALSE(exportElements(project, folder / "elements.csv"));
  testing::internal::CaptureStdout();  // warnings of elements without length
  const auto outcome = importFiles(back, {folder / "nodes.csv", folder / "elements.csv"}, {.isNonLinear = true});
  testing::internal::GetCapturedStdout();
  EXPECT_TRUE(outcome) << outcome.failure().reason;
  EXPECT_EQ(*back.X_I, *project.X_I);
  EXPECT_EQ(*back.F_I, *project.F_I);
  EXPECT_EQ(*back.D_I, *project.D_I);
  EXPECT_EQ(*back.trussElements, *project.trussElements);
  EXPECT_EQ(*back.beamElements, *project.beamElements);
}

/// Draws structures of all kinds of elements and numbers.
class Draw {
 public:
  explicit Draw(unsigned seed) : generator_(seed) {}

  std::shared_ptr<Project> structure() {
    auto project = std::make_shared<Project>();
    const int nodes = whole(0, 6);
    for (int node = 0; node < nodes; ++node) project->addNode({number(), number(), number()});
    for (double& load : project->F_I.edit()) load = chance(0.5) ? 0 : number();
    for (auto held : project->D_I.edit()) held = chance(0.3);
    auto& bars = project->trussElements.edit();
    auto& beams = project->beamElements.edit();
    const auto place = [&](std::int64_t node) { return *project->getNodeCoordinates(node); };
    for (int i = nodes > 0 ? whole(0, 12) : 0; i > 0; --i) {
      const std::int64_t start = whole(0, nodes - 1);
      const std::int64_t end = whole(0, nodes - 1);
      if (chance(0.6))
        bars.emplace_back(std::ssize(bars), start, end, place(start), place(end), number(), number(), chance(0.3),
                          chance(0.5));
      else
        beams.emplace_back(std::ssize(beams), start, end, place(start), place(end), number(), number(), number(),
                           number(), number(), chance(0.5));
    }
    return project;
  }

 private:
  bool chance(double part) { return std::uniform_real_distribution<>(0, 1)(generator_) < part; }
  int whole(int least, int most) { return std::uniform_int_distribution<>(least, most)(generator_); }
  double number() {
    if (chance(0.2)) return whole(-3, 3);
    const double digits = std::uniform_real_distribution<>(-1, 1)(generator_);
    return chance(0.5) ? digits * 1000 : chance(0.1) ? -0.0 : std::ldexp(digits, whole(-150, 150));
  }

  std::mt19937 generator_;
};

}  // namespace

TEST(RoundTrip, TablesKeepRandomStructures) {
  const char* asked = std::getenv("GAVREL_RANDOM_STRUCTURES");
  const unsigned count = asked != nullptr ? static_cast<unsigned>(std::atoi(asked)) : 40;
  for (unsigned seed = 1; seed <= count && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    testing::internal::CaptureStdout();
    const auto project = Draw(seed).structure();
    testing::internal::GetCapturedStdout();
    expectToComeBack(*project);
  }
}

TEST(RoundTrip, TablesKeepTheExamples) {
  for (const auto& entry : std::filesystem::directory_iterator(GAVREL_EXAMPLES)) {
    if (entry.path().extension() != ".json") continue;
    SCOPED_TRACE(entry.path());
    const auto project = readProject(entry.path());
    ASSERT_TRUE(project);
    expectToComeBack(**project);
  }
}
