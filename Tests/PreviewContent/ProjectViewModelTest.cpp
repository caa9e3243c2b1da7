#include "PreviewContent/ProjectViewModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "DataModel/ProjectFile.h"
#include "Tests/TemporaryFolder.h"

namespace {

using testing::ElementsAre;
using testing::StartsWith;

std::string printed(const std::function<void()>& action) {
  testing::internal::CaptureStdout();
  action();
  return testing::internal::GetCapturedStdout();
}

/// Everything that neither saving nor loading may touch.
auto stateOf(const ProjectViewModel& model) {
  return std::tuple(*model.appMode, *model.selectedNodesForTruss, *model.lastUsedStartX, *model.lastUsedStartY,
                    *model.lastUsedStartZ, *model.lastUsedConnectToLast, *model.isStrainVisualizationActive);
}

TEST(ProjectViewModel, StartsWithAnEmptyProject) {
  const ProjectViewModel model;
  const Project& project = **model.project;
  EXPECT_EQ(*project.name, "New Project");
  EXPECT_EQ(project.magnify, 1.0);
  EXPECT_TRUE(project.trussElements->empty() && project.beamElements->empty() && project.X_I->empty());
  EXPECT_EQ(stateOf(model), std::tuple(AppMode::normal, std::vector<std::int64_t>{}, QString("0.0"), QString("0.0"),
                                       QString("0.0"), true, false));
  EXPECT_EQ(*model.numberOfNodes, 0);
  EXPECT_EQ(model.currentFileUrl, std::nullopt);
}

TEST(ProjectViewModel, AddsNodesTiedToTheLastOne) {
  ProjectViewModel model;
  EXPECT_EQ(printed([&] { model.addNode({0, 0, 0}, true); }), "Added Node: id 0 at (0.0, 0.0, 0.0)\n");
  EXPECT_EQ(printed([&] {
              model.addNode({2, 0, 0}, true);
            }),
            "Added Truss: Nodes 0, 1 with Area 25.0, E 100000.0\nAdded Node: id 1 at (2.0, 0.0, 0.0)\n");
  EXPECT_EQ(printed([&] { model.addNode({2.5, -1e-5, 1e17}, false); }), "Added Node: id 2 at (2.5, -1e-05, 1e+17)\n");
  EXPECT_EQ(*model.numberOfNodes, 3);
  EXPECT_EQ((*model.project)->nodeCount(), 3);
  const TrussElement expected(0, 0, 1, {0, 0, 0}, {2, 0, 0}, 25, 100000, false, true);
  EXPECT_THAT(*(*model.project)->trussElements, ElementsAre(expected));
}

TEST(ProjectViewModel, AddsElementsNumberedByTheirLists) {
  ProjectViewModel model;
  for (const double x : {0.0, 3.0}) model.addNode({x, 4 * x / 3, 0}, false);
  EXPECT_EQ(printed([&] { model.addTruss(1, 0, 0.5, 2e5); }), "Added Truss: Nodes 1, 0 with Area 0.5, E 200000.0\n");
  EXPECT_EQ(printed([&] { model.addBeam(0, 1, 1, 2, 3, 4, 5); }), "Added Beam: Nodes 0, 1\n");
  EXPECT_EQ(printed([&] { model.addTruss(0, 0, 1, 1); }),
            "Warning: Truss element has zero initial length for ID 1.\nAdded Truss: Nodes 0, 0 with Area 1.0, E 1.0\n");
  const Project& project = **model.project;
  EXPECT_EQ(project.trussElements->at(0), TrussElement(0, 1, 0, {3, 4, 0}, {0, 0, 0}, 0.5, 2e5, false, true));
  EXPECT_THAT(*project.beamElements, ElementsAre(BeamElement(0, 0, 1, {0, 0, 0}, {3, 4, 0}, 1, 2, 3, 4, 5, false)));
  EXPECT_EQ(printed([&] { model.addTruss(0, 7, 1, 1); }),
            "Error: Could not find coordinates for nodes 0 or 7 to add truss.\n");
  EXPECT_EQ(printed([&] { model.addBeam(7, 0, 1, 1, 1, 1, 1); }),
            "Error: Could not find coordinates for nodes to add beam.\n");
  EXPECT_EQ(project.trussElements->size() + project.beamElements->size(), 3U);
}

TEST(ProjectViewModel, AnnouncesBeforeAndNotifiesAfterAChange) {
  ProjectViewModel model;
  std::vector<std::string> seen;
  const auto look = [&](const std::string& when) {
    return [&, when] { seen.push_back(when + " " + std::to_string(int(*model.appMode))); };
  };
  model.objectWillChange.observe(look("before"));
  QObject::connect(&model, &ProjectViewModel::appModeChanged, look("after"));
  model.setAppMode(AppMode::addingBeam);
  EXPECT_THAT(seen, ElementsAre("before 0", "after 2"));

  int announced = 0, notified = 0;
  model.objectWillChange.observe([&] { ++announced; });
  QObject::connect(&model, &ProjectViewModel::projectChanged, [&] { ++notified; });
  model.addNode({0, 0, 0}, false);
  EXPECT_EQ(announced, 2) << "for the number of nodes, and for the project";
  EXPECT_EQ(notified, 1);

  int selections = 0;
  QObject::connect(&model, &ProjectViewModel::selectedNodesForTrussChanged, [&] { ++selections; });
  model.setSelectedNodesForTruss({1});
  model.setSelectedNodesForTruss({1});
  EXPECT_EQ(selections, 1) << "the same nodes again are no change";
}

TEST(ProjectViewModel, SavesAndLoads) {
  TemporaryFolder folder;
  ProjectViewModel model;
  EXPECT_EQ(printed([&] { EXPECT_FALSE(model.saveProject(std::nullopt)); }),
            "No save location specified. Use 'Save As...'\n");
  model.addNode({1, 2, 3}, false);
  model.addNode({1, 2, 5}, true);
  model.setAppMode(AppMode::addingTruss);
  model.setSelectedNodesForTruss({1, 0});
  model.setLastUsedStartX("7e1");
  model.setIsStrainVisualizationActive(true);
  const auto state = stateOf(model);
  EXPECT_EQ(printed([&] { EXPECT_TRUE(model.saveProject(folder / "a b.json")); }),
            "Project saved successfully to a b.json\n");
  EXPECT_EQ(printed([&] { EXPECT_TRUE(model.saveProject(QUrl())); }), "Project saved successfully to a b.json\n");

  EXPECT_EQ(printed([&] { EXPECT_FALSE(model.loadProject(QUrl())); }), "No load file specified. Use 'Open...'\n");
  const auto former = *model.project;
  EXPECT_EQ(printed([&] {
              EXPECT_TRUE(model.loadProject(QUrl::fromLocalFile(QString::fromStdString(folder / "a b.json"))));
            }),
            "Project loaded successfully from a b.json\n");
  EXPECT_NE(*model.project, former);
  EXPECT_EQ(*(*model.project)->trussElements, *former->trussElements);
  EXPECT_EQ(*model.numberOfNodes, 2);
  EXPECT_EQ(stateOf(model), state);

  model.newProject();
  EXPECT_EQ(*model.numberOfNodes, 0);
  EXPECT_EQ(*model.appMode, AppMode::normal);
  EXPECT_TRUE(model.selectedNodesForTruss->empty());
  EXPECT_EQ(model.currentFileUrl, std::nullopt);
}

TEST(ProjectViewModel, AFailedSaveKeepsItsTarget) {
  TemporaryFolder folder;
  ProjectViewModel model;
  const auto target = folder / "missing/model.json";
  EXPECT_THAT(printed([&] { EXPECT_FALSE(model.saveProject(target)); }), StartsWith("Failed to save project: "));
  EXPECT_EQ(model.currentFileUrl, target);

  // What no file can hold is refused before a location is looked at.
  model.addNode({0, std::numeric_limits<double>::quiet_NaN(), 0}, false);
  EXPECT_THAT(printed([&] { EXPECT_FALSE(model.saveProject(folder / "nan.json")); }),
              StartsWith("Failed to save project: X_I[1] is nan"));
  EXPECT_EQ(model.currentFileUrl, target);
  EXPECT_EQ(folder.entries(), 0);
}

TEST(ProjectViewModel, AFailedLoadLeavesAnEmptyProject) {
  TemporaryFolder folder;
  for (const auto& file : {folder.put("half.json", "{\"name\": \"x\", "), folder / "missing.json", folder.path()}) {
    ProjectViewModel model;
    model.addNode({1, 1, 1}, false);
    model.currentFileUrl = file;
    model.setSelectedNodesForTruss({0});
    EXPECT_THAT(printed([&] { EXPECT_FALSE(model.loadProject(file)); }), StartsWith("Failed to load project: "));
    EXPECT_EQ((*model.project)->nodeCount(), 0);
    EXPECT_EQ(*(*model.project)->name, "New Project");
    EXPECT_EQ(*model.numberOfNodes, 0);
    EXPECT_EQ(model.currentFileUrl, std::nullopt);
    EXPECT_THAT(*model.selectedNodesForTruss, ElementsAre(0));
  }
}

TEST(ProjectViewModel, ReadsAndWritesForTheSheets) {
  ProjectViewModel model;
  for (const double x : {0.0, 1.0, 2.0}) model.addNode({x, 2, 3}, true);
  model.setLoadAndRestraint(0, 5, 6, 7, false, true, false);
  const NodeContents node = model.nodeContents(0);
  EXPECT_THAT((std::vector{node.x, node.y, node.z, node.loadX, node.loadY, node.loadZ}), ElementsAre(0, 2, 3, 5, 0, 7));
  EXPECT_THAT((std::vector{node.restX, node.restY, node.restZ}), ElementsAre(false, true, false));
  EXPECT_EQ(model.nodeContents(9).x, 0);

  (*model.project)->trussElements.edit()[0].id = 1;  // found by its number, written by its place
  model.setNonLinear(1, false);
  EXPECT_EQ(model.trussContents(1).isNonLinear, true);
  EXPECT_EQ((*model.project)->trussElements->at(1).isNonLinear, false);
  EXPECT_FALSE(model.trussContents(2).found);
  EXPECT_DEATH(model.setNonLinear(2, true), "Fatal error: ");
  EXPECT_DEATH(model.addTruss(-1, 0, 1, 1), "Fatal error: ");
}

}  // namespace
