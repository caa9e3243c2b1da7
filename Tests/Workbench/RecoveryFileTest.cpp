#include "Workbench/RecoveryFile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

#include "Platform/FileBytes.h"
#include "Tests/Structures.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

TEST(RecoveryFile, KeepsEveryBitAndATextThatIsNotWholeIsRefused) {
  const TemporaryFolder files;
  auto project = std::make_shared<Project>("Brücke \xFF\n");
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  constexpr double infinity = std::numeric_limits<double>::infinity();
  project->addNode({0.1, 2, -0.0});
  project->addNode({infinity, -infinity, 5e-324});
  addBar(*project, 0, 1, nan, {.isNonLinear = true});
  project->beamElements.edit().emplace_back(7, -1, 1, Vector3{}, Vector3{1, 0, 0}, 1, 2, 3, 4, 5, false);
  project->setLoadAndRestraint(1, {1, -2, 3}, false, true, false);
  const RecoveredProject recovered{project, "/home/a b\n1 2.json", FileStamp{1, 2, 3, 4}, QDateTime::currentDateTime()};
  const auto path = files / "kept";
  ASSERT_EQ(writeRecovery(path, recovered), std::nullopt);
  const auto back = readRecovery(path);
  ASSERT_TRUE(back);
  const auto bits = [](const std::vector<double>& numbers) {
    return std::string(reinterpret_cast<const char*>(numbers.data()), numbers.size() * sizeof(double));
  };
  EXPECT_EQ(bits(*back->project->X_I), bits(*project->X_I));
  EXPECT_EQ(*back->project->F_I, *project->F_I);
  EXPECT_EQ(*back->project->D_I, *project->D_I);
  EXPECT_EQ(back->project->nI, 12);
  ASSERT_EQ(std::ssize(*back->project->trussElements), 1);
  TrussElement bar = back->project->trussElements->front();
  EXPECT_TRUE(std::isnan(std::exchange(bar.EAL3, 0)));
  TrussElement expected = project->trussElements->front();
  expected.EAL3 = 0;
  EXPECT_EQ(bar, expected);
  EXPECT_EQ(*back->project->beamElements, *project->beamElements);
  EXPECT_EQ(*back->project->name, *project->name);
  EXPECT_EQ(back->file, recovered.file);
  EXPECT_EQ(back->stamp, recovered.stamp);
  EXPECT_EQ(back->time.toMSecsSinceEpoch(), recovered.time.toMSecsSinceEpoch());
  const std::string text = *readFile(path);
  for (std::size_t i = 0; i < text.size(); ++i) {
    EXPECT_FALSE(readRecovery(files.put("short", text.substr(0, i)))) << i;
    std::string changed = text;
    changed[i] = static_cast<char>(changed[i] ^ 1);
    EXPECT_FALSE(readRecovery(files.put("changed", changed))) << i;
  }
}

}  // namespace
