#include "Workbench/FileFlow.h"

#include <gmock/gmock.h>

#include <QSignalSpy>

#include "DataModel/ProjectFile.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

/// The flow without a window: the test answers, and chooses the files.
class FileFlowTest : public testing::Test {
 protected:
  FileFlowTest() {
    flow.setProjectViewModel(&model);
    QObject::connect(&flow, &FileFlow::filesWanted,
                     [this](const FileRequest& request) { requests.push_back(request); });
  }

  QUrl url(const std::string& name) const {
    return QUrl::fromLocalFile(QString::fromStdString((files / name).string()));
  }

  /// A file with so many nodes.
  QUrl projectFile(const std::string& name, int nodes) const {
    Project project;
    for (int i = 0; i < nodes; ++i) project.addNode({double(i), 0, 0});
    EXPECT_EQ(writeProject(project, files / name), std::nullopt);
    return url(name);
  }

  void edit() { model.addNode({0, 0, 0}, false); }

  /// Opens a file with two nodes, and changes the structure.
  void openAndEdit() {
    model.openProject(projectFile("model.json", 2));
    edit();
  }

  std::int64_t nodesIn(const std::string& name) const {
    const auto project = readProject(files / name);
    return project ? (*project)->nodeCount() : -1;
  }

  std::string question() const { return flow.prompt().question.toStdString(); }
  std::string text() const { return flow.prompt().text.toStdString(); }

  TemporaryFolder files;
  ProjectViewModel model;
  FileFlow flow;
  std::vector<FileRequest> requests;
  QSignalSpy quits{&flow, &FileFlow::quitConfirmed};
};

TEST_F(FileFlowTest, ASaveWithoutAFileAsksForOneAndBeforeItReplacesOne) {
  edit();
  (*model.project)->name.edit() = "Halle 1/2";
  flow.save();
  ASSERT_EQ(requests.size(), 1);
  EXPECT_EQ(requests[0].purpose, FileRequest::Save);
  EXPECT_EQ(requests[0].name, "Halle 1-2.json");
  EXPECT_EQ(requests[0].suffix, "json");
  flow.showSavePanel();
  EXPECT_EQ(requests.size(), 1) << "one panel at a time";
  files.put("taken.json", "theirs");
  flow.takeFiles({url("taken.json")});
  EXPECT_EQ(question(), "Replace “taken.json”?");
  flow.answer(FileFlow::Default);
  ASSERT_EQ(requests.size(), 2);
  EXPECT_EQ(requests[1].name, "taken.json");
  flow.takeFiles({url("taken.json")});
  flow.answer(FileFlow::Reject);
  EXPECT_FALSE(flow.busy());
  EXPECT_EQ(files.get("taken.json"), "theirs");
  flow.showSavePanel();
  flow.takeFiles({url("taken.json")});
  flow.answer(FileFlow::Destructive);
  EXPECT_EQ(nodesIn("taken.json"), 1);
  flow.showSavePanel();
  flow.takeFiles({url("free.json")});
  EXPECT_EQ(nodesIn("free.json"), 1);
  EXPECT_FALSE(flow.busy());
}

TEST_F(FileFlowTest, AFailedSaveIsToldWithItsReasonAndOffersAnotherPlace) {
  fs::create_directory(files / "gone");
  model.openProject(projectFile("gone/model.json", 2));
  edit();
  EXPECT_FALSE(flow.mayQuit());
  fs::remove_all(files / "gone");
  flow.answer(FileFlow::Default);
  EXPECT_EQ(question(), "Write “model.json” anew?");
  flow.answer(FileFlow::Destructive);
  EXPECT_EQ(question(), "");
  EXPECT_THAT(text(), StartsWith("“model.json” was not saved.\n\n"));
  EXPECT_THAT(text(), HasSubstr("gone/model.json\": No such file or directory"));
  EXPECT_EQ(flow.prompt().rejectText, "Save As…");
  flow.answer(FileFlow::Reject);
  ASSERT_EQ(requests.size(), 1);
  EXPECT_EQ(text(), "") << "the panel is open";
  flow.takeFiles({url("none/model.json")});
  EXPECT_EQ(flow.prompt().rejectText, "Close");
  flow.answer(FileFlow::Reject);
  EXPECT_FALSE(flow.busy()) << "another failure ends it";
  EXPECT_TRUE(quits.empty());
  EXPECT_FALSE(flow.mayQuit());
  flow.answer(FileFlow::Default);
  flow.answer(FileFlow::Reject);
  flow.takeFiles({url("rescued.json")});
  EXPECT_EQ(nodesIn("rescued.json"), 3);
  EXPECT_EQ(quits.size(), 1) << "what was asked for goes on";
}

TEST_F(FileFlowTest, AFailedOpenIsToldAndCanBeTakenBack) {
  flow.open(url("none.json"));
  EXPECT_THAT(text(), StartsWith("“none.json” was not opened."));
  EXPECT_THAT(text(), HasSubstr("none.json\": No such file or directory"));
  EXPECT_EQ(flow.prompt().defaultText, "") << "there was nothing before";
  flow.answer(FileFlow::Reject);
  for (const bool atOnce : {true, false}) {
    edit();
    model.discardChanges();
    flow.open(url("none.json"));
    EXPECT_EQ(*model.numberOfNodes, 0);
    flow.answer(atOnce ? FileFlow::Default : FileFlow::Reject);
    if (!atOnce) flow.restorePrevious();
    EXPECT_EQ(*model.numberOfNodes, atOnce ? 1 : 2);
    EXPECT_FALSE(flow.busy());
  }
}

TEST_F(FileFlowTest, AFileThatOthersChangedIsNotOverwrittenUnasked) {
  for (const bool removed : {false, true}) {
    openAndEdit();
    removed ? void(fs::remove(files / "model.json")) : void(files.put("model.json", "theirs"));
    const std::string theirs = files.get("model.json");
    flow.save();
    EXPECT_EQ(question(), removed ? "Write “model.json” anew?" : "Overwrite “model.json”?");
    EXPECT_TRUE(flow.interrupted());
    flow.answer(FileFlow::Reject);
    flow.save();
    flow.answer(FileFlow::Default);
    flow.takeFiles({});
    EXPECT_EQ(files.get("model.json"), theirs);
    EXPECT_FALSE(flow.busy());
    flow.save();
    flow.answer(FileFlow::Destructive);
    EXPECT_EQ(nodesIn("model.json"), 3);
  }
}

TEST_F(FileFlowTest, WhatEndsTheProgramIsShownOnlyIfItIsMeant) {
  Project odd("odd");
  odd.addNode({1, 2, 3});
  odd.trussElements.edit().emplace_back(0, -1, 0, Vector3{}, Vector3{1, 2, 3}, 1, 1, false, false);
  ASSERT_EQ(writeProject(odd, files / "odd.json"), std::nullopt);
  const fs::path folder = files / "recovery";
  ProjectViewModel ended;
  std::optional<Recovery> left(std::in_place, ended, folder);
  ended.restore(odd.copy(), {});
  left->flush();
  left.reset();
  Recovery recovery(model, folder);
  recovery.lookForOffer();
  for (const bool opens : {true, false}) {
    model.newProject();
    for (const auto answer : {FileFlow::Reject, FileFlow::Default, FileFlow::Destructive}) {
      opens ? flow.open(url("odd.json")) : flow.restore(&recovery);
      EXPECT_THAT(question(), testing::MatchesRegex("Open “odd.*” although that ends Gavrel\\?"));
      EXPECT_THAT(text(), HasSubstr("trussElements[0] names node -1"));
      EXPECT_EQ(flow.prompt().rejectText, "");
      flow.answer(answer);
      EXPECT_EQ(*model.numberOfNodes, answer == FileFlow::Destructive ? 1 : 0);
      EXPECT_FALSE(flow.busy());
    }
  }
}

TEST_F(FileFlowTest, WhatLosesChangesAsksFirst) {
  projectFile("other.json", 7);
  struct Way {
    std::function<void()> begin;
    std::function<bool()> done;
  };
  const Way ways[] = {
      {[this] { flow.newProject(); }, [this] { return *model.numberOfNodes == 0; }},
      {[this] { flow.showOpenPanel(); }, [this] { return requests.size() == 1; }},
      {[this] { flow.open(url("other.json")); }, [this] { return *model.numberOfNodes == 7; }},
      {[this] { flow.drop({url("other.json")}); }, [this] { return *model.numberOfNodes == 7; }},
      {[this] { EXPECT_EQ(flow.mayQuit(), *model.numberOfNodes == 0); },
       [this] { return quits.size() == 1 && flow.mayQuit(); }},
  };
  for (const auto& [begin, done] : ways) {
    for (const auto answer : {FileFlow::Reject, FileFlow::Destructive, FileFlow::Default}) {
      openAndEdit();
      requests.clear();
      quits.clear();
      begin();
      EXPECT_EQ(question(), "Save the changes to “model.json”?");
      EXPECT_FALSE(flow.interrupted());
      flow.answer(answer);
      EXPECT_EQ(done(), answer != FileFlow::Reject);
      EXPECT_EQ(nodesIn("model.json"), answer == FileFlow::Default ? 3 : 2);
      EXPECT_EQ(question(), "");
      flow.takeFiles({});

      model.openProject(projectFile("model.json", 2));
      fs::remove(files / "model.json");
      requests.clear();
      quits.clear();
      begin();
      EXPECT_EQ(question(), "Save “model.json”?") << "the only copy";
      EXPECT_FALSE(model.hasUnsavedChanges());
      flow.answer(answer);
      if (answer == FileFlow::Default) flow.answer(FileFlow::Destructive);  // writes it anew
      EXPECT_EQ(done(), answer != FileFlow::Reject);
      EXPECT_EQ(nodesIn("model.json"), answer == FileFlow::Default ? 2 : -1);
      EXPECT_FALSE(flow.prompt().text.size());
      flow.takeFiles({});
    }
    model.newProject();
    requests.clear();
    begin();
    EXPECT_FALSE(flow.prompt().text.size()) << "nothing to lose";
    flow.takeFiles({});
  }
}

TEST_F(FileFlowTest, QuittingWaitsForTheQuestionThatIsOpen) {
  for (const auto answer : {FileFlow::Reject, FileFlow::Destructive}) {
    openAndEdit();
    files.put("model.json", "theirs");
    flow.save();
    EXPECT_FALSE(flow.mayQuit());
    EXPECT_THAT(question(), StartsWith("Overwrite"));
    flow.answer(answer);
    EXPECT_EQ(quits.size(), answer == FileFlow::Destructive);
    EXPECT_FALSE(flow.busy());
  }
  edit();
  flow.exportNodes();
  files.put("nodes.csv", "theirs");
  flow.takeFiles({url("nodes.csv")});
  EXPECT_FALSE(flow.mayQuit());
  EXPECT_THAT(question(), StartsWith("Replace"));
  flow.answer(FileFlow::Destructive);
  EXPECT_THAT(question(), StartsWith("Save the changes"));
}

TEST_F(FileFlowTest, ExportsAreNamedAndTheirFailuresTold) {
  openAndEdit();
  (*model.project)->name.edit() = "Halle 1/2";
  const std::pair<void (FileFlow::*)(), std::string> exports[] = {{&FileFlow::exportNodes, "nodes.csv"},
                                                                  {&FileFlow::exportElements, "elements.csv"},
                                                                  {&FileFlow::exportVtu, "Halle 1-2.vtu"},
                                                                  {&FileFlow::exportPicture, "Halle 1-2.png"}};
  QObject::connect(&flow, &FileFlow::pictureWanted,
                   [this](const QUrl& file) { flow.writePicture(QImage(2, 2, QImage::Format_RGB32), file); });
  for (const auto& [run, name] : exports) {
    (flow.*run)();
    flow.takeFiles({url("model.json")});
    flow.answer(FileFlow::Destructive);
    EXPECT_THAT(text(), HasSubstr("model.json\", which is read: choose another file"));
    EXPECT_EQ(nodesIn("model.json"), 2) << "an export does not replace the project's file";
    flow.answer(FileFlow::Reject);
    for (const std::string folder : {"", "none/"}) {
      (flow.*run)();
      EXPECT_EQ(requests.back().name.toStdString(), name);
      EXPECT_EQ(requests.back().suffix.toStdString(), name.substr(name.find('.') + 1));
      flow.takeFiles({url(folder + name)});
      EXPECT_EQ(fs::exists(files / (folder + name)), folder.empty());
      EXPECT_EQ(text().rfind("Nothing was exported.\n\n", 0) == 0, !folder.empty()) << text();
      flow.answer(FileFlow::Reject);
    }
  }
}

TEST_F(FileFlowTest, TablesAndDrawingsAreImportedOrItIsToldWhyNot) {
  files.put("nodes.csv", "x,y,z\n0,0,0\n1,0,0\n");
  files.put("BARS.CSV", "start,end,colour\n0,1,red\n");
  QSignalSpy imported(&flow, &FileFlow::importedIntoEmpty);
  flow.drop({url("BARS.CSV")});
  EXPECT_TRUE(flow.busy());
  flow.importFiles(25, 1e5, false);
  EXPECT_THAT(text(), StartsWith("Nothing was imported.\n\nBARS.CSV, line 2, column start: there is no node 0"));
  flow.answer(FileFlow::Reject);
  for (const std::size_t bars : {1, 2}) {
    flow.showImportPanel();
    EXPECT_EQ(requests.back().purpose, FileRequest::OpenMany);
    flow.takeFiles({url("nodes.csv"), url("BARS.CSV")});
    flow.importFiles(25, 1e5, false);
    EXPECT_EQ((*model.project)->trussElements->size(), bars);
    EXPECT_THAT(text(), HasSubstr("colour"));
    flow.answer(FileFlow::Reject);
    EXPECT_FALSE(flow.busy());
  }
  EXPECT_EQ(imported.size(), 2);
  testing::internal::CaptureStdout();
  flow.drop({url("nodes.csv"), url("model.json")});
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Drop one project file at a time.\n");
}

TEST_F(FileFlowTest, EachPromptIsShownAnew) {
  std::vector<std::string> shown;
  QObject::connect(&flow, &FileFlow::changed, [&] {
    if (shown.empty() || shown.back() != text()) shown.push_back(text());
  });
  openAndEdit();
  EXPECT_FALSE(flow.mayQuit());
  flow.writePicture({}, url("picture.png"));
  flow.answer(FileFlow::Reject);
  flow.answer(FileFlow::Reject);
  EXPECT_THAT(shown, ElementsAre("", "They are lost otherwise.", "", "The picture is too large.", "",
                                 "They are lost otherwise.", ""));
  EXPECT_FALSE(flow.busy());
}

}  // namespace
