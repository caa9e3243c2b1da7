#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <thread>

#include "DataModel/ProjectFile.h"
#include "Tests/EndToEnd/Desktop.h"
#include "Tests/Structures.h"

using namespace gavrel;

namespace {

/// The text of the array under `key`, without white space.
std::string arrayText(const std::string& json, const std::string& key) {
  const auto start = json.find('[', json.find("\"" + key + "\""));
  std::string text = json.substr(start, json.find(']', start) - start);
  std::erase_if(text, [](char c) { return c == ' ' || c == '\n'; });
  return text;
}

/// Turns the restraints in x, y and z as told in the sheet that is open, and applies.
void turnRestraints(Desktop& desktop, bool x, bool y, bool z) {
  std::string keys = "Tab Tab";  // to the last field of the load
  for (const bool turned : {x, y, z}) keys += turned ? " Tab space" : " Tab";
  desktop.keys(keys);
  desktop.keys("Return");
}

/// Completes the save panel that has opened.
void saveAs(Desktop& desktop, const std::string& name) {
  desktop.type(name);  // takes the place of the name that is proposed
  desktop.keys("Return");
}

TEST(Window, BuildsSolvesAndSavesATriangle) {
  Desktop desktop;
  const char* const nodes[][3] = {{"-2", "1", "0"}, {"2", "1", "0"}, {"0", "4", "0"}};
  for (const auto& [x, y, z] : nodes) {
    desktop.press(Desktop::addNode);
    desktop.type(x);
    desktop.keys("Tab");
    desktop.type(y);
    desktop.keys("Tab");
    desktop.type(z);
    if (std::string(x) == "-2") desktop.keys("Tab space");  // no bar to the last node, here and in the next forms
    desktop.keys("Return");
    desktop.expectLine("Added Node: id");
  }

  // From left to right the nodes are 0, 2, 1. The last digit of a node also selects an element, whose sheet opens.
  desktop.press(Desktop::selectForTruss);
  desktop.clickNode(0, 3);
  desktop.expectLine("One node selected for truss: 0");
  desktop.keys("Escape");
  desktop.clickNode(2, 3);
  desktop.expectLine("Two nodes selected for truss: 0, 1. 'Add Truss (Configure)' button is now enabled.");
  desktop.keys("Escape");
  desktop.clickNode(1, 3);
  desktop.expectLine("More than two nodes selected for truss.");
  desktop.keys("Escape");
  desktop.press(Desktop::addTruss);
  desktop.keys("Return");
  desktop.expectLine("Added Truss: Nodes 0, 1 with Area 25.0, E 100000.0");
  desktop.expectLine("Added Truss: Nodes 1, 2 with Area 25.0, E 100000.0");
  desktop.press(Desktop::selectForTruss);
  desktop.clickNode(1, 3);  // element 2 is still selected: no sheet
  desktop.clickNode(0, 3);
  desktop.keys("Escape");
  desktop.press(Desktop::addTruss);
  desktop.keys("Return");
  desktop.expectLine("Added Truss: Nodes 2, 0 with Area 25.0, E 100000.0");

  for (const std::size_t node : {0U, 2U}) {
    desktop.clickNode(node, 3);
    turnRestraints(desktop, true, true, true);
    desktop.keys("Escape");  // the element's sheet that follows
  }
  desktop.clickNode(1, 3);
  desktop.type("120");
  desktop.keys("Tab");
  desktop.type("9e4");
  desktop.keys("shift+Tab");
  // The sheet shows the entries 6 to 8, which are those of node 1: restrained in all directions.
  turnRestraints(desktop, true, true, false);
  desktop.keys("Escape");

  desktop.press(Desktop::calculate);
  desktop.press(Desktop::showStrain);
  desktop.keys("ctrl+shift+s");
  saveAs(desktop, "triangle.json");
  desktop.expectLine("Project saved successfully to triangle.json");
  desktop.expectTitle("triangle.json");
  desktop.keys("ctrl+q");
  EXPECT_EQ(desktop.exitStatus(), 0);

  // The same structure, built by hand and solved by the command.
  Project expected;
  for (const Vector3& place : {Vector3{-2, 1, 0}, {2, 1, 0}, {0, 4, 0}}) expected.addNode(place);
  for (const auto& [start, end] : {std::pair{0, 1}, {1, 2}, {2, 0}}) {
    addBar(expected, start, end, 100000, {.isNonLinear = true});
    TrussElement& bar = expected.trussElements.edit().back();
    bar.area = 25;
    bar.EAL3 *= 25;
  }
  expected.setLoadAndRestraint(0, {}, true, true, true);
  expected.setLoadAndRestraint(1, {}, true, true, true);
  expected.setLoadAndRestraint(2, {120, 9e4, 0}, false, false, true);
  ASSERT_EQ(writeProject(expected, desktop.home / "expected.json"), std::nullopt);
  const std::string folder = desktop.home.path().string() + "/";
  ASSERT_EQ(std::system((GAVREL_CLI " solve " + folder + "expected.json --output " + folder + "solved.json > " +
                         folder + "norms.txt")
                            .c_str()),
            0);
  const std::string saved = desktop.home.get("triangle.json");
  const std::string unsolved = desktop.home.get("expected.json");
  for (const auto* key : {"X_I", "F_I", "D_I"}) EXPECT_EQ(arrayText(saved, key), arrayText(unsolved, key));
  EXPECT_EQ(arrayText(saved, "trussElements"), arrayText(desktop.home.get("solved.json"), "trussElements"));
  EXPECT_NE(desktop.output().find(desktop.home.get("norms.txt")), std::string::npos) << desktop.output();
}

TEST(Window, OffersWhatAKilledProcessHasLeftAndAsksBeforeItGoes) {
  Desktop desktop;
  for (int node = 0; node < 2; ++node) {
    desktop.press(Desktop::addNode);
    desktop.type(std::to_string(node));
    desktop.keys("Return");
    desktop.expectLine("Added Node: id " + std::to_string(node));
  }
  desktop.expectTitle("^\\*New Project");
  std::this_thread::sleep_for(std::chrono::seconds(1));
  desktop.killAndRestart();
  desktop.keys("Return");  // Restore
  desktop.expectTitle("^\\*New Project");

  desktop.keys("ctrl+n");
  desktop.keys("Escape");  // Cancel
  desktop.keys("ctrl+q");
  desktop.keys("Return");  // Save
  saveAs(desktop, "kept.json");
  desktop.expectLine("Project saved successfully to kept.json");
  EXPECT_EQ(desktop.exitStatus(), 0);
  const auto kept = readProject(desktop.home / "kept.json");
  ASSERT_TRUE(kept);
  EXPECT_EQ((*kept)->nodeCount(), 2);
  EXPECT_EQ(std::ssize(*(*kept)->trussElements), 1);
}

TEST(Window, AFileThatEndsTheProgramWhenShownIsAskedForFirst) {
  TemporaryFolder files;
  Project project;
  project.addNode({1, 2, 3});
  project.trussElements.edit().emplace_back(0, -1, 0, Vector3{}, Vector3{1, 2, 3}, 1, 1, false, false);
  const auto file = files / "odd.json";
  ASSERT_EQ(writeProject(project, file), std::nullopt);
  for (const bool anyway : {false, true}) {
    Desktop desktop = Desktop::underSheet({file.string()});
    EXPECT_EQ(desktop.output(), "");
    desktop.run(anyway ? "key --delay 40 Tab space" : "key Return");
    if (anyway) {
      EXPECT_EQ(WTERMSIG(desktop.exitStatus()), SIGABRT);
      EXPECT_NE(desktop.errors().find("Fatal error: index -1 is outside"), std::string::npos) << desktop.errors();
    } else {
      desktop.expectTitle("^New Project");
      desktop.press(Desktop::addNode);
      desktop.keys("Return");
      desktop.expectLine("Added Node: id 0");
    }
  }
}

TEST(Window, TellsOfAnUpdateThatFailedAfterItsEnd) {
  Desktop desktop = Desktop::underSheet({"--update-failed=cp: no room"});
  desktop.keys("ctrl+shift+n");      // opens no form behind the sheet
  desktop.keys("Tab space Return");  // OK; a form would print
  EXPECT_EQ(desktop.output(), "");
  desktop.keys("ctrl+shift+n Return");
  desktop.expectLine("Added Node: id 0");
}

TEST(Window, LivesOnWhenNobodyReadsItsOutput) {
  TemporaryFolder files;
  const auto script = files.put("gavrel", "#!/bin/bash\nexec " GAVREL " > >(:)\n");
  std::filesystem::permissions(script, std::filesystem::perms::owner_all);
  Desktop desktop({}, script.string());
  desktop.keys("ctrl+shift+n Return");
  desktop.expectTitle("^\\*New Project");
  std::this_thread::sleep_for(std::chrono::seconds(1));
  EXPECT_EQ(desktop.ended(), std::nullopt);
  EXPECT_EQ(desktop.output(), "");
  EXPECT_FALSE(std::filesystem::exists(desktop.home / ".cache/gavrel/qmlcache")) << "which a kill may leave cut off";
  desktop.killAndRestart();
  desktop.keys("Return");  // Restore
  desktop.expectTitle("^\\*New Project");
}

}  // namespace
