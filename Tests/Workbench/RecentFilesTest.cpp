#include "Workbench/RecentFiles.h"

#include <gmock/gmock.h>

#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

TEST(RecentFiles, AreTheLastTenThatAreStillThere) {
  TemporaryFolder folder;
  const QString settings = QString::fromStdString((folder / "config/settings.ini").string());
  std::optional<ProjectViewModel> model(std::in_place);
  std::optional<RecentFiles> recent(std::in_place, *model, settings);
  const auto path = [&](const std::string& name) { return QString::fromStdString((folder / name).string()); };
  const auto save = [&](const std::string& name) { EXPECT_TRUE(model->saveProject(QUrl::fromLocalFile(path(name)))); };
  for (int i = 0; i < 12; ++i) save(std::to_string(i) + ", \"ä\" & 100%.json");
  save("5, \"ä\" & 100%.json");
  model->loadProject(folder / "broken.json");
  std::filesystem::remove(folder / "11, \"ä\" & 100%.json");

  recent.emplace(*model, settings);
  QStringList expected;
  for (const int i : {5, 10, 9, 8, 7, 6, 4, 3, 2}) expected += path(std::to_string(i) + ", \"ä\" & 100%.json");
  EXPECT_EQ(recent->paths(), expected);
  EXPECT_TRUE(model->loadProject(RecentFiles::url(expected[3])));
  EXPECT_EQ(recent->paths().first(), expected[3]);
  // Another copy of the program reads and writes the same file.
  EXPECT_THAT(folder.get("config/settings.ini"),
              testing::HasSubstr("recentFiles=\"" + expected[3].section(u',', 0, 0).toStdString() + ","));
  const auto theirs = folder.put("theirs.json", "");
  folder.put("config/settings.ini", "[General]\nrecentFiles=" + theirs.string() + "\n");
  save("ours.json");
  EXPECT_EQ(recent->paths(), QStringList({path("ours.json"), path("theirs.json")}));
  recent->clear();
  EXPECT_EQ(recent->paths(), QStringList());
}

}  // namespace
