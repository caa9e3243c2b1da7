#include <gmock/gmock.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include "Tests/TemporaryFolder.h"
#include "Workbench/FilePanel.h"

using namespace gavrel;

namespace {

/// Qt's own panel, which is used if the desktop has none, on a folder with three files.
class FilePanelTest : public testing::Test {
 protected:
  FilePanelTest() {
    for (const auto* name : {"a.csv", "b.csv", "c.json"}) folder_.put(name, "old");
  }

  QFileDialog& open(FileRequest::Purpose purpose, const QString& name = {}) {
    panel_.open({.purpose = purpose,
                 .nameFilters = {"CSV (*.csv)"},
                 .suffix = "csv",
                 .name = name,
                 .folder = QUrl::fromLocalFile(QString::fromStdString(folder_.path().string()))});
    auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr) throw std::runtime_error("no panel has opened");
    return *dialog;
  }

  static void typeName(QFileDialog& dialog, const QString& name) {
    auto* const field = dialog.findChild<QLineEdit*>();
    QTest::keyClicks(field, name);
    QTest::keyClick(field, Qt::Key_Return);
  }

  QStringList chosen() {
    QStringList names;
    for (const auto& arguments : accepted_)
      for (const QUrl& file : arguments.at(0).value<QList<QUrl>>()) names.append(file.fileName());
    return names;
  }

  TemporaryFolder folder_;
  FilePanel panel_;
  QSignalSpy accepted_{&panel_, &FilePanel::accepted};
  QSignalSpy rejected_{&panel_, &FilePanel::rejected};
};

TEST_F(FilePanelTest, ReturnInTheNameTakesItWithItsSuffixAndReplacesNothing) {
  QFileDialog& dialog = open(FileRequest::Save, "proposed.csv");
  EXPECT_TRUE(panel_.visible());
  EXPECT_EQ(dialog.findChild<QLineEdit*>()->selectedText(), "proposed.csv");
  typeName(dialog, "a");
  EXPECT_FALSE(panel_.visible());
  EXPECT_EQ(chosen(), QStringList("a.csv"));
  EXPECT_EQ(folder_.get("a.csv"), "old");
  EXPECT_TRUE(rejected_.empty());
}

TEST_F(FilePanelTest, SeveralFilesCanBeOpenedWhereThatMakesSense) {
  QFileDialog& many = open(FileRequest::OpenMany);
  auto* const view = many.findChild<QAbstractItemView*>("listView");
  ASSERT_TRUE(QTest::qWaitFor([&] { return view->model()->rowCount(view->rootIndex()) == 2; }));
  view->selectAll();
  QTest::keyClick(many.findChild<QLineEdit*>(), Qt::Key_Return);
  EXPECT_EQ(chosen(), (QStringList{"a.csv", "b.csv"}));
  QFileDialog& one = open(FileRequest::OpenOne);
  EXPECT_EQ(one.fileMode(), QFileDialog::ExistingFile);
  QTest::keyClick(&one, Qt::Key_Escape);
  EXPECT_EQ(rejected_.size(), 1);
  EXPECT_EQ(accepted_.size(), 1);
}

TEST_F(FilePanelTest, ShowsFilesOfItsKindOnlyAndOffersToMakeAFolder) {
  QFileDialog& dialog = open(FileRequest::Save);
  const auto* const view = dialog.findChild<QAbstractItemView*>("listView");
  const auto names = [view] {
    QStringList all;
    for (int i = 0; i < view->model()->rowCount(view->rootIndex()); ++i)
      all.append(view->model()->index(i, 0, view->rootIndex()).data().toString());
    all.sort();
    return all;
  };
  EXPECT_TRUE(QTest::qWaitFor([&] { return names() == QStringList{"a.csv", "b.csv"}; }));
  EXPECT_TRUE(dialog.findChild<QWidget*>("newFolderButton")->isEnabled());
  EXPECT_FALSE(dialog.testOption(QFileDialog::ReadOnly));
  QTest::keyClick(&dialog, Qt::Key_Escape);
}

TEST_F(FilePanelTest, ASecondOneIsNotOpenedBesideIt) {
  QFileDialog& first = open(FileRequest::Save);
  EXPECT_EQ(&open(FileRequest::Save), &first);
  QTest::keyClick(&first, Qt::Key_Escape);
  EXPECT_EQ(rejected_.size(), 1);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
