#include "Managers/SignatureTransfer.h"

#include <gmock/gmock.h>

#include "Tests/Managers/DownloadCase.h"
#include "Tests/Managers/SigningKeys.h"

using namespace gavrel;

namespace {

class SignedDownload : public DownloadCase {
 protected:
  SignedDownload() {
    setup.publicKeys = {keys.publicKey("ours"), keys.publicKey("next")};
    server.answers["/a.zip"] = {"content"};
    server.answers["/a.zip.sig"] = {keys.signature("content", "ours")};
  }

  const SigningKeys keys;
};

TEST_F(SignedDownload, IsStoredOnlyWithItsMakersSignature) {
  const QByteArray good = keys.signature("content", "ours");
  QByteArray flipped = good;
  flipped[10] = static_cast<char>(flipped[10] ^ 1);
  for (const Answer& bad : {Answer{.body = "not found", .status = 404}, Answer{good, 201}, Answer{good.chopped(1)},
                            Answer{good + "\n"}, Answer{QByteArray()}, Answer{flipped}, Answer{QByteArray(64, 0)},
                            Answer{good.toBase64()}, Answer{keys.signature("content", "theirs")},
                            Answer{keys.signature("another version", "ours")}, Answer{.body = good, .cutOffAfter = 63},
                            Answer{.status = 302, .headers = "Location: http://localhost/a.zip.sig\r\n"}}) {
    server.answers["/a.zip.sig"] = bad;
    start();
    download();
    ASSERT_TRUE(becomes("error"));
    EXPECT_THAT(description(), testing::StartsWith("Download failed: The update")) << bad.body.toHex().toStdString();
    EXPECT_FALSE(std::filesystem::exists(files / (folder() + "/brantelUpdate")));
  }
  for (const char* key : {"ours", "next"}) {
    server.answers["/a.zip.sig"] = {keys.signature("content", key)};
    history.clear();
    start();
    download();
    ASSERT_TRUE(becomes("downloaded"));
    EXPECT_EQ(stored(), "content");
    EXPECT_FALSE(history.contains("error"));
  }
}

TEST_F(SignedDownload, IsLostWhenTheStateHasMovedOnBeforeItsSignatureComes) {
  server.answers["/a.zip.sig"] = {.drip = 1};
  start();
  download();
  ASSERT_TRUE(happens([&] { return server.isDripping(); }));
  manager->skipUpdate();
  ASSERT_TRUE(becomes("error"));
  EXPECT_EQ(description(), "Invalid server response");
}

TEST_F(SignedDownload, IsSilentFromTheMomentOfItsCancelling) {
  server.answers["/versions.json"] = {.drip = 1};
  start();
  for (int steps = 0; steps < 1000 && !history.contains("downloaded"); ++steps) {
    history.clear();
    manager->checkForUpdates(false);
    download();
    for (int step = 0; step < steps; ++step) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    manager->cancel();
    ASSERT_TRUE(happens([&] { return manager->state->name() == "idle" && !server.isDripping(); })) << steps;
    QCoreApplication::processEvents();
    EXPECT_EQ(history.last(), "idle") << steps;
  }
  EXPECT_TRUE(history.contains("downloaded"));
}

TEST_F(SignedDownload, IsProvenAgainBeforeItIsInstalled) {
  setup.bundle.url = files / "Gavrel.app";
  start();
  download();
  ASSERT_TRUE(becomes("downloaded"));
  const std::string archive = folder() + "/brantelUpdate/brantel-Update.zip";
  for (const bool isGone : {false, true}) {
    files.put(archive, "Content");
    if (isGone) std::filesystem::remove(files / archive);
    history.clear();
    manager->installUpdate(manager->state->info,
                           QUrl::fromLocalFile(QString::fromStdString((files / archive).string())));
    ASSERT_TRUE(happens([&] { return history == QStringList({"installing", "error"}); }));
    EXPECT_EQ(description(), "Download failed: The update is not signed by the makers of this program.");
    EXPECT_FALSE(terminated);
  }
}

}  // namespace
