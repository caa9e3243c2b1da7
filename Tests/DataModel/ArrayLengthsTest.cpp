#include "DataModel/ArrayLengths.h"

#include <gmock/gmock.h>

#include "DataModel/ProjectFile.h"

namespace {

using testing::ElementsAre;
using testing::StartsWith;

std::shared_ptr<Project> projectWith(std::size_t coordinates, std::size_t loads, std::size_t restraints) {
  return projectOf({"", {}, {}, std::vector(coordinates, 1.0), std::vector(loads, 2.0), std::vector(restraints, true)});
}

TEST(ArrayLengths, FillsWhatIsMissing) {
  const auto project = projectWith(6, 7, 0);
  int announced = 0;
  project->observe([&announced] { ++announced; });
  const auto lines = fitArrays(*project);
  ASSERT_TRUE(lines);
  EXPECT_THAT(*lines, ElementsAre("F_I has 7 entries, where 2 nodes have 12: filled with zeros.",
                                  "D_I has 0 entries, where 2 nodes have 12: filled with false."));
  EXPECT_THAT(*project->F_I, ElementsAre(2, 2, 2, 2, 2, 2, 2, 0, 0, 0, 0, 0));
  EXPECT_EQ(*project->D_I, std::vector<bool>(12));
  EXPECT_EQ(announced, 2);
  EXPECT_THAT(*fitArrays(*project), testing::IsEmpty());
  EXPECT_EQ(announced, 2) << "of no change";
}

TEST(ArrayLengths, RefusesWhatIsTooMuchAndChangesNothing) {
  const std::tuple<std::size_t, std::size_t, std::size_t, const char*> cases[] = {
      {7, 12, 0, "X_I has 7 entries, where 2 nodes have 6: "},
      {3, 7, 5, "F_I has 7 entries, where 1 node has 6: "},
      {3, 0, 8, "D_I has 8 entries, where 1 node has 6: "},
      {0, 1, 0, "F_I has 1 entry, where 0 nodes have 0: "}};
  for (const auto& [coordinates, loads, restraints, reason] : cases) {
    const auto project = projectWith(coordinates, loads, restraints);
    project->observe([] { ADD_FAILURE() << "of a change"; });
    const auto lines = fitArrays(*project);
    ASSERT_FALSE(lines) << reason;
    EXPECT_THAT(lines.failure().reason, StartsWith(reason));
  }
}

}  // namespace
