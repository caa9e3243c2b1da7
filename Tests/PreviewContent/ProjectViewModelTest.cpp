#include "PreviewContent/ProjectViewModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <limits>
#include <string>

#include "DataModel/ProjectFile.h"
#include "Platform/Console.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

using testing::ElementsAre;
using testing::MatchesRegex;
using testing::StartsWith;

std::string printed(const std::function<void()>& action) {
  testing::internal::CaptureStdout();
  action();
  return testing::internal::GetCapturedStdout();
}

/// Everything that neither saving nor loading may touch.
auto captureState(const ProjectViewModel& model) {
  return std::tuple(*model.appMode, *model.selectedNodesForTruss, *model.lastUsedStartX, *model.lastUsedStartY,
                    *model.lastUsedStartZ, *model.lastUsedConnectToLast, *model.isStrainVisualizationActive);
}

TEST(ProjectViewModel, AddsNodesTiedToTheLastOne) {
  ProjectViewModel model;
  EXPECT_EQ(printed([&] { model.addNode({0, 0, 0}, true); }), "Added Node: id 0 at (0.0, 0.0, 0.0)\n");
  EXPECT_EQ(printed([&] { model.addNode(2, 0, 0, true); }),
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
  model.addBeam(1, 0, 1, 1, 1, 1, 1);
  EXPECT_EQ(printed([&] { model.addTruss(0, 0, 1, 1); }),
            "Warning: Truss element has zero initial length for ID 1.\nAdded Truss: Nodes 0, 0 with Area 1.0, E 1.0\n");
  const Project& project = **model.project;
  EXPECT_EQ(project.trussElements->at(0), TrussElement(0, 1, 0, {3, 4, 0}, {0, 0, 0}, 0.5, 2e5, false, true));
  EXPECT_EQ(project.beamElements->at(0), BeamElement(0, 0, 1, {0, 0, 0}, {3, 4, 0}, 1, 2, 3, 4, 5, false));
  EXPECT_EQ(printed([&] { model.addTruss(0, 7, 1, 1); }),
            "Error: Could not find coordinates for nodes 0 or 7 to add truss.\n");
  EXPECT_EQ(printed([&] { model.addBeam(7, 0, 1, 1, 1, 1, 1); }),
            "Error: Could not find coordinates for nodes to add beam.\n");
  EXPECT_EQ(model.property("numberOfElements"), 4);
}

TEST(ProjectViewModel, AnnouncesEachPropertyBeforeItChanges) {
  const struct {
    const char *name, *signal;
    QVariant next;
  } cases[] = {{"appMode", "mode", 2},
               {"selectedNodesForTruss", "nodes", QVariantList{qint64(4), qint64(1)}},
               {"lastUsedStartX", "form", "7"},
               {"lastUsedStartY", "form", "8"},
               {"lastUsedStartZ", "form", "9"},
               {"lastUsedConnectToLast", "form", false},
               {"isStrainVisualizationActive", "strain", true}};
  for (const auto& [name, signal, next] : cases) {
    ProjectViewModel model;
    std::vector<std::pair<std::string, QVariant>> seen;
    const auto look = [&seen, &model, property = name](const char* when) {
      return [&seen, &model, property, when] { seen.emplace_back(when, model.property(property)); };
    };
    const QVariant old = model.property(name);
    model.objectWillChange.observe(look("before"));
    QObject::connect(&model, &ProjectViewModel::appModeChanged, look("mode"));
    QObject::connect(&model, &ProjectViewModel::selectedNodesForTrussChanged, look("nodes"));
    QObject::connect(&model, &ProjectViewModel::lastUsedChanged, look("form"));
    QObject::connect(&model, &ProjectViewModel::isStrainVisualizationActiveChanged, look("strain"));
    model.setProperty(name, next);
    EXPECT_THAT(seen, ElementsAre(std::pair("before", old), std::pair(signal, next))) << name;
  }
}

/// What each operation tells on a model of two nodes, in this order: "w", that a published property will change, once
/// for each that it writes and before it, so that ahead of the k-th no more than k - 1 of them may differ; "p", the
/// same of the former project, which is another observable; and afterwards, with the number of nodes as it is then, "c"
/// of a changed project, "f" of another file and "l" of a project that was loaded.
TEST(ProjectViewModel, TellsObserversBeforeAChangeAndTheWindowAfterIt) {
  TemporaryFolder folder;
  const auto file = folder.put("a.json", R"({"name":"","trussElements":[],"X_I":[1,2,3,4,5],"F_I":[],"D_I":[]})");
  const struct {
    const char* operation;
    std::function<void(ProjectViewModel&)> change;
    const char* told;
  } cases[] = {
      {"addNode", [](auto& m) { m.addNode(1, 2, 3, false); }, "ppppwwc3Added Node: [^\n]*\n"},
      {"addNode, tied", [](auto& m) { m.addNode(1, 2, 3, true); },
       "ppppwpwc3Added Truss: [^\n]*\nwc3Added Node: [^\n]*\n"},
      {"addTruss", [](auto& m) { m.addTruss(0, 1, 1, 1); }, "pwc2Added Truss: [^\n]*\n"},
      {"addTruss to nothing", [](auto& m) { m.addTruss(0, 7, 1, 1); }, "Error: [^\n]*\n"},
      {"addBeam", [](auto& m) { m.addBeam(0, 1, 1, 1, 1, 1, 1); }, "pwc2Added Beam: [^\n]*\n"},
      {"setLoadAndRestraint", [](auto& m) { m.setLoadAndRestraint(1, 1, 1, 1, false, true, false); }, "ppwc2"},
      {"setNonLinear", [](auto& m) { m.setNonLinear(0, false); }, "pc2"},
      {"makeLinear", [](auto& m) { m.makeLinear({0}); }, "pwc2"},
      {"saveProject", [&](auto& m) { m.saveProject(folder / "b.json"); }, "f2Project saved successfully to b.json\n"},
      {"loadProject", [&](auto& m) { m.loadProject(file); }, "wwwc1Project loaded successfully from a.json\nf1l1"},
      {"loadProject of nothing", [](auto& m) { m.loadProject(std::nullopt); },
       "No load file specified. Use 'Open...'\n"},
      {"loadProject that fails", [&](auto& m) { m.loadProject(folder / "none"); },
       "Failed to load project: [^\n]*\nwwwc0f0l0"},
      {"newProject", [](auto& m) { m.newProject(); }, "wwwwwc0f0l0"},
      {"restore", [](auto& m) { m.restore(std::make_shared<Project>(), {}); }, "wwwc0f0l0"},
      {"setProject", [](auto& m) { m.setProject(std::make_shared<Project>()); }, "wc2"},
      {"setMarks", [](auto& m) { m.setMarks({.nodes = {1}}); }, ""},
  };
  for (const auto& [operation, change, told] : cases) {
    SCOPED_TRACE(operation);
    ProjectViewModel model;
    printed([&, &change = change] {
      for (const double x : {0.0, 1.0}) model.addNode({x, 0, 0}, true);
      model.setAppMode(AppMode::addingTruss);
      model.setSelectedNodesForTruss({1});
    });
    const auto former = *model.project;
    const auto differing = [&, before = captureState(model), nodes = *model.numberOfNodes] {
      return (*model.project != former) + (*model.numberOfNodes != nodes) + (*model.appMode != std::get<0>(before)) +
             (*model.selectedNodesForTruss != std::get<1>(before));
    };
    int calls = 0;
    model.objectWillChange.observe([&] {
      EXPECT_LE(differing(), calls++);
      std::fputs("w", stdout);
    });
    const auto subscription = former->observe([] { std::fputs("p", stdout); });
    const auto tell = [&model](char what) {
      return [&model, what] { std::printf("%c%d", what, static_cast<int>(*model.numberOfNodes)); };
    };
    QObject::connect(&model, &ProjectViewModel::projectChanged, tell('c'));
    QObject::connect(&model, &ProjectViewModel::projectLoaded, tell('l'));
    QObject::connect(&model, &ProjectViewModel::currentFileChanged, tell('f'));
    EXPECT_THAT(printed([&, &change = change] { change(model); }), MatchesRegex(told));
    EXPECT_LE(differing(), calls);
    former->forget(subscription);
  }
}

TEST(ProjectViewModel, MakesTheArraysFitBeforeItAddsOrLoads) {
  const TemporaryFolder folder;
  const auto table = folder.put("one.csv", "x,y,Fx\n5,0,3\n");
  const std::function<void(ProjectViewModel&)> edits[] = {
      [](auto& m) { m.addNode(1, 2, 3, true); }, [](auto& m) { m.addTruss(0, 1, 1, 1); },
      [](auto& m) { m.addBeam(0, 1, 1, 1, 1, 1, 1); },
      [](auto& m) { m.setLoadAndRestraint(1, 3, 0, 0, false, true, false); },
      [&](auto& m) { EXPECT_EQ(m.importFiles({table}, {}) ? m.project->get()->nodeCount() : 2, *m.numberOfNodes); }};
  for (const auto& edit : edits) {
    const auto edited = [&](std::vector<double> X, std::size_t loads, std::size_t restraints) {
      ProjectViewModel model;
      model.restore(makeProject({"", {}, {}, std::move(X), std::vector<double>(loads), std::vector<bool>(restraints)}),
                    {});
      model.discardChanges();
      const auto before = *encodeProject(**model.project);
      const std::string lines = printed([&] { edit(model); });
      const auto after = *encodeProject(**model.project);
      EXPECT_EQ(model.hasUnsavedChanges(), after != before);
      return std::tuple(after, lines, model.remark().toStdString());
    };
    const auto [fitting, plainLines, nothing] = edited({0, 0, 0, 1, 0, 0}, 12, 12);
    const auto [filled, lines, remark] = edited({0, 0, 0, 1, 0, 0}, 0, 1);
    EXPECT_EQ(filled, fitting);
    EXPECT_EQ(nothing, "");
    const bool imports = plainLines.starts_with("Imported");  // whose outcome has the remarks
    EXPECT_EQ(remark, imports ? ""
                              : "F_I has 0 entries, where 2 nodes have 12: filled with zeros. "
                                "D_I has 1 entry, where 2 nodes have 12: filled with false.");
    EXPECT_EQ(lines, (imports ? "" : remark + "\n") + plainLines);
    const auto [refused, refusal, reason] = edited({0, 0, 0, 1, 0, 0, 9}, 0, 0);
    EXPECT_EQ(refused, *encodeProject(*makeProject({"", {}, {}, {0, 0, 0, 1, 0, 0, 9}, {}, {}})));
    EXPECT_THAT(refusal, MatchesRegex("(Nothing was changed|Failed to import): X_I has 7 entries, [^\n]*\n"));
  }
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
  const auto state = captureState(model);
  EXPECT_EQ(printed([&] { EXPECT_TRUE(model.saveProject(folder / "a b.json")); }),
            "Project saved successfully to a b.json\n");
  EXPECT_EQ(printed([&] { EXPECT_TRUE(model.saveProject(QUrl())); }), "Project saved successfully to a b.json\n");

  for (const char* nowhere : {"", "https://example.invalid/a.json"}) {
    EXPECT_EQ(printed([&] { EXPECT_FALSE(model.loadProject(QUrl(nowhere))); }),
              "No load file specified. Use 'Open...'\n");
    EXPECT_EQ(*model.numberOfNodes, 2);
  }
  const auto former = *model.project;
  EXPECT_EQ(printed([&] {
              EXPECT_TRUE(model.loadProject(QUrl::fromLocalFile(QString::fromStdString(folder / "a b.json"))));
            }),
            "Project loaded successfully from a b.json\n");
  EXPECT_NE(*model.project, former);
  EXPECT_EQ(*(*model.project)->trussElements, *former->trussElements);
  for (const auto& [url, name] : {std::pair("/a%20b.json", "a b.json"), {"/none", ""}}) {
    model.loadProject(QUrl("file://" + QString::fromStdString(folder.path().string()) + url));
    EXPECT_EQ(model.property("currentFileName"), name);
    EXPECT_EQ(*(*model.project)->name, "New Project");
  }
  model.loadProject(folder / "a b.json");
  EXPECT_EQ(model.currentFileUrl, folder / "a b.json");
  EXPECT_EQ(model.currentFolder().toLocalFile().toStdString(), folder.path());
  EXPECT_EQ(*model.numberOfNodes, 2);
  EXPECT_EQ(captureState(model), state);

  model.newProject();
  EXPECT_EQ(*model.numberOfNodes + (*model.project)->nodeCount(), 0);
  EXPECT_EQ(*model.appMode, AppMode::normal);
  EXPECT_TRUE(model.selectedNodesForTruss->empty());
  EXPECT_EQ(model.currentFileUrl, std::nullopt);
}

TEST(ProjectViewModel, AFailedSaveKeepsItsTargetAndWhatIsUnsaved) {
  TemporaryFolder folder;
  ProjectViewModel model;
  int changes = 0;
  QStringList reasons;
  QObject::connect(&model, &ProjectViewModel::unsavedChangesChanged, [&] { ++changes; });
  QObject::connect(&model, &ProjectViewModel::saveFailed, [&](const QString& reason) { reasons += reason; });
  const auto target = folder / "missing/model.json";
  EXPECT_THAT(printed([&] { EXPECT_FALSE(model.saveProject(target)); }), StartsWith("Failed to save project: "));
  EXPECT_EQ(model.currentFileUrl, target);
  EXPECT_FALSE(model.currentFileHoldsIt());
  EXPECT_TRUE(model.hasUnsavedChanges());
  ASSERT_EQ(reasons.size(), 1);
  EXPECT_TRUE(reasons.first().contains("missing/model.json"));

  changes = 0;
  EXPECT_FALSE(model.saveProject(QUrl()));
  EXPECT_EQ(changes, 0) << "it counted as saved for a while, and what is kept for recovery was given up";

  // A structure that no file can hold is refused before the location is checked.
  model.addNode({0, 1, 2}, false);
  model.addNode({0, std::numeric_limits<double>::quiet_NaN(), 0}, false);
  EXPECT_THAT(printed([&] { EXPECT_FALSE(model.saveProject(folder / "nan.json")); }),
              StartsWith("Failed to save project: X_I[4] (node 1, y) is nan"));
  EXPECT_EQ(model.currentFileUrl, target);
  EXPECT_EQ(folder.entries(), 0);

  std::filesystem::create_directory(folder / "missing");
  (*model.project)->X_I.edit()[4] = 0;
  EXPECT_TRUE(model.saveProject(QUrl()));
  EXPECT_TRUE(model.currentFileHoldsIt());
  EXPECT_FALSE(model.hasUnsavedChanges());
  EXPECT_FALSE(model.saveProject(folder / "none/other.json"));
  EXPECT_FALSE(model.currentFileHoldsIt());
  EXPECT_TRUE(model.hasUnsavedChanges());
}

TEST(ProjectViewModel, EachChangeOfTheStructureIsUnsavedAndToldOf) {
  TemporaryFolder folder;
  const auto nodes = folder.put("nodes.csv", "node,x,y,z\n0,5,5,5\n");
  ProjectViewModel model;
  int edits = 0;
  QObject::connect(&model, &ProjectViewModel::structureEdited, [&] { ++edits; });
  for (const double x : {0.0, 1.0, 2.0}) model.addNode({x, 0, 0}, true);
  const std::pair<const char*, std::function<void()>> cases[] = {
      {"addNode", [&] { model.addNode(3, 0, 0, false); }},
      {"addTruss", [&] { model.addTruss(0, 2, 1, 1); }},
      {"addBeam", [&] { model.addBeam(0, 2, 1, 1, 1, 1, 1); }},
      {"setLoadAndRestraint", [&] { model.setLoadAndRestraint(0, 1, 0, 0, false, false, false); }},
      {"setNonLinear", [&] { model.setNonLinear(0, false); }},
      {"makeLinear", [&] { model.makeLinear({1}); }},
      {"importFiles", [&] { EXPECT_TRUE(model.importFiles({nodes}, {})); }},
      {"restore", [&] { model.restore((*model.project)->copy(), {}); }},
      {"restorePrevious", [&] {
         model.loadProject(folder / "none");
         edits = 0;
         model.restorePrevious();
       }}};
  for (const auto& [name, change] : cases) {
    SCOPED_TRACE(name);
    if (std::string(name) != "restorePrevious") model.discardChanges();
    edits = 0;
    change();
    EXPECT_TRUE(model.hasUnsavedChanges());
    EXPECT_GT(edits, 0);
  }

  // A structure that was saved before a failed open counts as saved, in the same file, after it was restored.
  const auto file = folder / "saved.json";
  model.saveProject(file);
  const auto stamp = model.origin().stamp;
  edits = 0;
  model.loadProject(folder / "none");
  model.restorePrevious();
  EXPECT_FALSE(model.hasUnsavedChanges());
  EXPECT_EQ(edits, 0);
  EXPECT_EQ(model.origin().file, file);
  EXPECT_EQ(model.origin().stamp, stamp);
  EXPECT_TRUE(model.currentFileHoldsIt());
}

TEST(ProjectViewModel, SeesWhatOthersHaveDoneToItsFile) {
  using enum ProjectViewModel::ChangeOnDisk;
  TemporaryFolder folder;
  const auto file = folder / "a.json";
  ProjectViewModel model;
  EXPECT_EQ(model.changeOnDisk(), none);
  model.addNode({1, 2, 3}, false);
  model.saveProject(file);
  EXPECT_EQ(model.changeOnDisk(), none);
  model.addNode({2, 2, 3}, false);

  ProjectViewModel second;
  second.loadProject(file);
  EXPECT_EQ(second.changeOnDisk(), none);
  second.saveProject(QUrl());
  EXPECT_EQ(model.changeOnDisk(), changed);
  std::filesystem::remove(file);
  EXPECT_EQ(model.changeOnDisk(), removed);
  model.saveProject(QUrl());
  EXPECT_EQ(model.changeOnDisk(), none);
  EXPECT_EQ(second.changeOnDisk(), changed);
  second.loadProject(file);
  EXPECT_EQ(second.changeOnDisk(), none);

  // The user has agreed to replace the file at the place of a failed save.
  std::filesystem::create_directory(folder / "folder");
  model.saveProject(folder / "folder");
  EXPECT_EQ(model.changeOnDisk(), none);
}

TEST(ProjectViewModel, ReadsAndWritesForTheSheets) {
  ProjectViewModel model;
  for (const double x : {0.0, 1.0, 2.0}) model.addNode({x, 2, 3}, true);
  model.setLoadAndRestraint(0, 5, 6, 7, false, true, false);
  const NodeContents node = model.nodeContents(0);
  EXPECT_THAT((std::vector{node.x, node.y, node.z, node.loadX, node.loadY, node.loadZ}), ElementsAre(0, 2, 3, 5, 0, 7));
  EXPECT_THAT((std::vector{node.restX, node.restY, node.restZ}), ElementsAre(false, true, false));
  const NodeContents none = model.nodeContents(9);
  EXPECT_FALSE(none.x != 0 || none.restX || none.restY || none.restZ);

  (*model.project)->trussElements.edit()[0].id = 1;  // found by its number, written by its place
  model.setNonLinear(1, false);
  EXPECT_EQ(model.trussContents(1).isNonLinear, true);
  EXPECT_EQ((*model.project)->trussElements->at(1).isNonLinear, false);
  EXPECT_FALSE(model.trussContents(2).found);
  EXPECT_DEATH(model.setNonLinear(2, true), "Fatal error: ");
  EXPECT_DEATH(model.addTruss(-1, 0, 1, 1), "Fatal error: ");
  EXPECT_DEATH(model.addBeam(0, -1, 1, 1, 1, 1, 1), "Fatal error: ");
  model.numberOfNodes.edit() = std::numeric_limits<std::int64_t>::max();
  EXPECT_DEATH(model.addNode({0, 0, 0}, false), "Fatal error: The number of nodes");
}

}  // namespace
