#include "Managers/HttpTransfer.h"

#include <gmock/gmock.h>

#include "Tests/Managers/DownloadCase.h"

using namespace gavrel;

namespace {

using Download = DownloadCase;

TEST_F(Download, StoresTheArchiveAndReplacesAnOlderOne) {
  for (const char byte : {'a', 'b'}) {
    server.answers["/a.zip"] = {QByteArray(300000, byte)};
    start();
    history.clear();
    download();
    EXPECT_EQ(history, QStringList());
    ASSERT_TRUE(becomes("downloaded"));
    EXPECT_EQ(stored(), std::string(300000, byte));
    EXPECT_EQ(manager->state->info.version, "2.0");
    EXPECT_EQ(manager->state->archive.toLocalFile().toStdString(),
              (files / (folder() + "/brantelUpdate/brantel-Update.zip")).string());
    EXPECT_EQ(manager->updateDirectory,
              QUrl::fromLocalFile(QString::fromStdString((files / (folder() + "/brantelUpdate")).string())));
    EXPECT_EQ(history.takeLast(), "downloaded");
    EXPECT_EQ(history, QStringList(history.size(), "downloading"));
    EXPECT_GE(history.size(), 2);
  }
  // Nothing else is left behind, and nobody else may look.
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(files / folder()), {}), 1);
  EXPECT_EQ(std::filesystem::status(files / folder()).permissions(), std::filesystem::perms::owner_all);
}

TEST_F(Download, TellsItsProgress) {
  server.answers["/a.zip"] = {QByteArray(1 << 20, 'x')};
  server.answers["/unknown.zip"] = {.body = QByteArray(1 << 20, 'x'), .tellsLength = false};
  start();
  std::vector<double> progress;
  QObject::connect(manager.get(), &UpdateManager::stateChanged, [&] {
    if (manager->state->kind == UpdateState::Case::downloading) progress.push_back(manager->state->progress);
  });
  download();
  ASSERT_TRUE(becomes("downloaded"));
  EXPECT_EQ(progress.front(), 0);
  EXPECT_EQ(progress.back(), 1);
  EXPECT_TRUE(std::ranges::is_sorted(progress));
  progress.clear();
  download("/unknown.zip");
  ASSERT_TRUE(happens([&] { return !progress.empty() && manager->state->name() == "downloaded"; }));
  EXPECT_EQ(progress, std::vector<double>{0});
}

TEST_F(Download, ThatFailsEndsInAnErrorAndStoresNothing) {
  const std::pair<Answer, const char*> cases[] = {
      {{.body = "a page that says so", .status = 404}, "Invalid server response"},
      {{.status = 204}, "Invalid server response"},
      {{.body = QByteArray(50000, 'x'), .cutOffAfter = 49999}, "Download failed: "},
      {{.silent = true}, "Download failed: The server sent nothing for 1 seconds."},
      {{QByteArray(100001, 'x')}, "Download failed: The server sent more than 100000 bytes."},
      {{.drip = 10}, "Download failed: The server sent less than 1000 bytes a second for 1 seconds."},
      {{.drip = 10000}, "Download failed: The server sent more than 100000 bytes."},
      {{.status = 302, .headers = "Location: http://localhost/a.zip\r\n"}, "Download failed: "}};
  setup.largestArchive = 100000;
  for (const auto& [answer, reason] : cases) {
    SCOPED_TRACE(reason);
    server.answers["/a.zip"] = answer;
    setup.silence = std::chrono::seconds(answer.silent ? 1 : 10);
    setup.slowness = std::chrono::seconds(answer.drip > 0 ? 1 : 20);
    start();
    download();
    ASSERT_TRUE(becomes("error"));
    EXPECT_THAT(description(), testing::StartsWith(reason));
    EXPECT_FALSE(std::filesystem::exists(files / (folder() + "/brantelUpdate")));
    manager.reset();
    EXPECT_TRUE(std::filesystem::is_empty(files / folder()));
  }
}

TEST_F(Download, NeedsAnAddressWithTls) {
  start();
  for (const char* address : {"", "http://localhost/a.zip", "file:///etc/passwd", "a.zip", "https://%zz/a.zip"}) {
    manager->skipUpdate();
    ASSERT_TRUE(becomes("idle"));
    manager->downloadUpdate(offer(address));
    ASSERT_TRUE(becomes("error"));
    EXPECT_EQ(description(), "Invalid update URL") << address;
  }
}

TEST_F(Download, FollowsRedirectionsWithTls) {
  server.answers["/a.zip"] = {.status = 302, .headers = "Location: /b.zip\r\n"};
  server.answers["/b.zip"] = {"content"};
  start();
  download();
  ASSERT_TRUE(becomes("downloaded"));
  EXPECT_EQ(stored(), "content");
}

TEST_F(Download, IsLostWhenTheStateHasMovedOn) {
  server.answers["/a.zip"] = {"content"};
  start();
  download();
  ASSERT_TRUE(becomes("downloading"));
  manager->skipUpdate();
  ASSERT_TRUE(becomes("error"));
  EXPECT_EQ(description(), "Invalid server response");
}

TEST_F(Download, AvoidsAFolderThatOthersMayEnterAndTellsThatTheArchiveCannotBeStored) {
  server.answers["/a.zip"] = {"content"};
  std::filesystem::create_directory(files / folder());
  std::filesystem::permissions(files / folder(), std::filesystem::perms(0755));
  start();
  download();
  ASSERT_TRUE(becomes("downloaded"));
  EXPECT_TRUE(std::filesystem::is_empty(files / folder()));
  const std::string other = folder() + "-1/brantelUpdate";
  EXPECT_EQ(files.get(other + "/brantel-Update.zip"), "content");

  std::filesystem::remove_all(files / other);
  files.put(other, "a file where the folder should be");
  start();
  download();
  ASSERT_TRUE(becomes("error"));
  EXPECT_THAT(description(),
              testing::AllOf(testing::StartsWith("Download failed: "), testing::HasSubstr("brantelUpdate")));

  ::setenv("TMPDIR", (files / "missing").c_str(), 1);
  server.requests.clear();
  start();
  download();
  ASSERT_TRUE(becomes("error"));
  EXPECT_THAT(description(), testing::StartsWith("Download failed: There is no folder for temporary files"));
  EXPECT_TRUE(server.requests.empty());
}

TEST_F(Download, ALaterOneTakesThePlaceOfTheFormer) {
  server.answers["/slow.zip"] = {.silent = true};
  server.answers["/a.zip"] = {"content"};
  start();
  download("/slow.zip");
  ASSERT_TRUE(happens([&] { return server.requests == QList<QByteArray>{"/slow.zip"}; }));
  download();
  ASSERT_TRUE(becomes("downloaded"));
  EXPECT_FALSE(history.contains("error"));
}

}  // namespace
