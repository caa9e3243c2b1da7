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

struct DownloadFact {
  const char* name;
  Answer answer;
  const char* description;
  friend void PrintTo(const DownloadFact& fact, std::ostream* out) { *out << fact.name; }
};

class FailingDownload : public Download, public testing::WithParamInterface<DownloadFact> {};

TEST_P(FailingDownload, EndsInAnErrorAndStoresNothing) {
  server.answers["/a.zip"] = GetParam().answer;
  setup.silence = std::chrono::seconds(GetParam().answer.silent ? 1 : 10);
  setup.slowness = std::chrono::seconds(GetParam().answer.drip > 0 ? 1 : 20);
  setup.largestArchive = 100000;
  start();
  download();
  ASSERT_TRUE(becomes("error"));
  EXPECT_THAT(description(), testing::StartsWith(GetParam().description));
  EXPECT_FALSE(std::filesystem::exists(files / (folder() + "/brantelUpdate")));
  manager.reset();
  EXPECT_TRUE(std::filesystem::is_empty(files / folder()));
}

INSTANTIATE_TEST_SUITE_P(
    Answers, FailingDownload,
    testing::Values(
        DownloadFact{"notFound", {.body = "a page that says so", .status = 404}, "Invalid server response"},
        DownloadFact{"noContent", {.status = 204}, "Invalid server response"},
        DownloadFact{"serverError", {.status = 500}, "Invalid server response"},
        DownloadFact{"cutOff", {.body = QByteArray(50000, 'x'), .cutOffAfter = 49999}, "Download failed: "},
        DownloadFact{"cutOffAtOnce", {.body = QByteArray(50000, 'x'), .cutOffAfter = 0}, "Download failed: "},
        DownloadFact{"silent", {.silent = true}, "Download failed: The server sent nothing for 1 seconds."},
        DownloadFact{
            "oversized", {QByteArray(100001, 'x')}, "Download failed: The server sent more than 100000 bytes."},
        DownloadFact{"oversizedUnannounced",
                     {.body = QByteArray(200000, 'x'), .tellsLength = false},
                     "Download failed: The server sent more"},
        DownloadFact{
            "slow", {.drip = 10}, "Download failed: The server sent less than 1000 bytes a second for 1 seconds."},
        DownloadFact{"endless", {.drip = 10000}, "Download failed: The server sent more than 100000 bytes."},
        DownloadFact{
            "withoutTls", {.status = 302, .headers = "Location: http://localhost/a.zip\r\n"}, "Download failed: "}),
    [](const auto& fact) { return std::string(fact.param.name); });

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
