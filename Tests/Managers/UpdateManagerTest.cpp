#include "Managers/UpdateManager.h"

#include <gmock/gmock.h>

#include "Tests/Managers/ManagerCase.h"

using namespace gavrel;

namespace {

const VersionInfo newer{"1.10", 8, "https://localhost/a.zip", "Says \"more\"\n", false, "12"};

QByteArray manifest(const VersionInfo& info, const QByteArray& key = "brantel") {
  return "{\"" + key + "\": " + encode(info) + "}";
}

VersionInfo version(const QString& number, qint64 build) {
  VersionInfo info = newer;
  info.version = number;
  info.build = build;
  return info;
}

using UpdateCheck = ManagerCase;

TEST_F(UpdateCheck, EndsInItsState) {
  // Of an explicit check: a state, or the start of an error's description.
  const std::tuple<const char*, Answer, const char*> cases[] = {
      {"newer", {manifest(newer)}, "updateAvailable"},
      {"older", {manifest(version("1.1.9", 99))}, "idle"},
      {"same version, newer build", {manifest(version("1.2", 8))}, "updateAvailable"},
      {"same version and build", {manifest(version("1.2", 7))}, "idle"},
      {"equal version, written otherwise", {manifest(version("1.2.0", 8))}, "idle"},
      {"other programs only", {manifest(newer, "other")}, "Invalid server response"},
      {"nothing", {"{}"}, "Invalid server response"},
      {"broken JSON", {manifest(newer).chopped(1)}, "Invalid server response"},
      {"the status is not examined", {.body = manifest(newer), .status = 404}, "updateAvailable"},
      {"no Content-Length", {.body = manifest(newer), .tellsLength = false}, "updateAvailable"},
      {"silent", {.silent = true}, "Network error: The server sent nothing for 1 seconds."},
      {"dripping", {.drip = 1}, "Network error: The server did not send everything within 1 seconds."},
      {"oversized", {QByteArray(2 << 20, ' ')}, "Network error: The server sent more than"}};
  for (const auto& [name, answer, outcome] : cases) {
    SCOPED_TRACE(name);
    server.answers["/versions.json"] = answer;
    server.requests.clear();
    setup.silence = std::chrono::seconds(answer.silent ? 1 : 10);
    setup.deadline = std::chrono::seconds(answer.drip > 0 ? 1 : 20);
    start();
    EXPECT_EQ(*manager->currentVersion, "1.2");
    EXPECT_EQ(*manager->currentBuild, 7);

    history.clear();
    manager->checkForUpdates(true);
    EXPECT_EQ(history, QStringList());  // what changes is posted
    ASSERT_TRUE(happens([&] { return history.size() == 2; }));
    EXPECT_EQ(history[0], "checking");
    EXPECT_THAT(history[1] == "error" ? description() : history[1].toStdString(), testing::StartsWith(outcome));

    const bool found = history[1] == "updateAvailable";
    EXPECT_EQ(manager->state->info.changelog, found ? newer.changelog : "");
    manager->skipUpdate();
    manager->checkForUpdates(false);
    ASSERT_TRUE(happens([&] { return history.size() == 4; }));
    EXPECT_EQ(history[2], "idle");
    EXPECT_EQ(history[3], found ? "updateAvailable" : "idle");
    EXPECT_EQ(server.requests, (QList<QByteArray>(2, "/versions.json")));
  }
}

TEST_F(UpdateCheck, NeedsATrustedServerWithTls) {
  ::unsetenv("SSL_CERT_FILE");
  start();
  manager->checkForUpdates(true);
  ASSERT_TRUE(becomes("error"));
  EXPECT_THAT(description(), testing::StartsWith("Network error: "));
  EXPECT_EQ(server.requests, QList<QByteArray>());

  for (const char* address :
       {"", "http://localhost/versions.json", "https://", "https://local host/", "versions.json"}) {
    setup.versionCheckUrl = address;
    history.clear();
    start();
    manager->checkForUpdates(true);
    manager->checkForUpdates(false);
    EXPECT_TRUE(happens([&] { return history.size() == 3; })) << address;
    EXPECT_EQ(history, (QStringList{"checking", "error", "idle"}));
  }
}

TEST_F(UpdateCheck, MayOutliveItsManager) {
  server.answers["/versions.json"] = {.silent = true};
  start();
  manager->checkForUpdates(true);
  ASSERT_TRUE(happens([&] { return !server.requests.isEmpty(); }));
  manager.reset();
  QCoreApplication::processEvents();
  EXPECT_EQ(history, QStringList("checking"));
}

TEST_F(UpdateCheck, AtEachStartIsTheUsersChoice) {
  start();
  EXPECT_TRUE(manager->checksAtStart());
  manager->setChecksAtStart(false);
  start();
  EXPECT_FALSE(manager->checksAtStart());
}

TEST_F(UpdateCheck, AnnouncesBeforeEachChange) {
  server.answers["/versions.json"] = {manifest(newer)};
  start();
  QStringList before;
  manager->objectWillChange.observe([&] { before += manager->state->name(); });
  manager->checkForUpdates(true);
  ASSERT_TRUE(becomes("updateAvailable"));
  EXPECT_EQ(before, (QStringList{"idle", "checking"}));
}

TEST_F(UpdateCheck, VersionsThatTheBundleDoesNotTellAreEmpty) {
  for (const char* build : {"", "7a", " 7", "99999999999999999999"}) {
    setup.bundle.dictionary = {{"CFBundleVersion", build}};
    start();
    EXPECT_EQ(*manager->currentVersion, "");
    EXPECT_EQ(*manager->currentBuild, 0) << build;
  }
}

}  // namespace
