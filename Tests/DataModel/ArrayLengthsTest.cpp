#include "DataModel/ArrayLengths.h"

#include <gmock/gmock.h>

#include "DataModel/ProjectFile.h"

using namespace gavrel;

TEST(ArrayLengths, WhatIsMissingIsFilledAndWhatIsTooMuchRefused) {
  const struct {
    std::size_t coordinates, loads, restraints;
    const char* told;
    int announced;
  } cases[] = {{6, 12, 12, "", 0},
               {6, 7, 0,
                "F_I has 7 entries, where 2 nodes have 12: filled with zeros.\n"
                "D_I has 0 entries, where 2 nodes have 12: filled with false.\n",
                2},
               {7, 12, 0, "X_I has 7 entries, where 2 nodes have 6: ", 0},
               {3, 7, 5, "F_I has 7 entries, where 1 node has 6: ", 0},
               {3, 0, 8, "D_I has 8 entries, where 1 node has 6: ", 0},
               {0, 1, 0, "F_I has 1 entry, where 0 nodes have 0: ", 0}};
  for (const auto& [coordinates, loads, restraints, told, announced] : cases) {
    SCOPED_TRACE(told);
    const auto project = makeProject(
        {"", {}, {}, std::vector(coordinates, 1.0), std::vector(loads, 2.0), std::vector(restraints, true)});
    int changes = 0;
    project->observe([&changes] { ++changes; });
    const auto filled = fitArrays(*project);
    std::string lines = filled ? "" : filled.failure().reason;
    if (filled)
      for (const std::string& line : *filled) lines += line + "\n";
    EXPECT_EQ(lines.substr(0, std::string(told).size()), told);
    EXPECT_EQ(changes, announced);
    EXPECT_EQ(filled && !lines.empty(), announced > 0);
    EXPECT_EQ(ArrayLengths::check(*project).misfits.empty(), static_cast<bool>(filled));
    if (announced == 0) continue;
    EXPECT_THAT(*project->F_I, testing::ElementsAre(2, 2, 2, 2, 2, 2, 2, 0, 0, 0, 0, 0));
    EXPECT_EQ(*project->D_I, std::vector<bool>(12));
  }
}
