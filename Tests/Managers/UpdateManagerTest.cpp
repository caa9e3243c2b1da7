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

struct CheckFact {
  const char* name;
  Answer answer;
  const char* outcome;  // of an explicit check: a state, or the start of an error's description
  friend void PrintTo(const CheckFact& fact, std::ostream* out) { *out << fact.name; }
};

class Check : public ManagerCase, public testing::WithParamInterface<CheckFact> {};

TEST_P(Check, EndsInItsState) {
  const auto& [name, answer, outcome] = GetParam();
  server.answers["/versions.json"] = answer;
  setup.silence = std::chrono::seconds(answer.silent ? 1 : 10);
  setup.deadline = std::chrono::seconds(answer.drip > 0 ? 1 : 20);
  start();
  EXPECT_EQ(*manager->currentVersion, "1.2");
  EXPECT_EQ(*manager->currentBuild, 7);

  manager->checkForUpdates(true);
  EXPECT_EQ(history, QStringList());  // what changes is posted
  ASSERT_TRUE(happens([&] { return history.size() == 2; }));
  EXPECT_EQ(history[0], "checking");
  if (history[1] == "error")
    EXPECT_THAT(description(), testing::StartsWith(outcome));
  else
    EXPECT_EQ(history[1], outcome);

  const bool found = history[1] == "updateAvailable";
  EXPECT_EQ(manager->state->info.changelog, found ? newer.changelog : "");
  manager->skipUpdate();
  manager->checkForUpdates(false);
  ASSERT_TRUE(happens([&] { return history.size() == 4; }));
  EXPECT_EQ(history[2], "idle");
  EXPECT_EQ(history[3], found ? "updateAvailable" : "idle");
  EXPECT_EQ(server.requests, (QList<QByteArray>(2, "/versions.json")));
}

INSTANTIATE_TEST_SUITE_P(
    Answers, Check,
    testing::Values(
        CheckFact{"newer", {manifest(newer)}, "updateAvailable"},
        CheckFact{"older", {manifest(version("1.1.9", 99))}, "idle"},
        CheckFact{"sameVersionNewerBuild", {manifest(version("1.2", 8))}, "updateAvailable"},
        CheckFact{"sameVersionSameBuild", {manifest(version("1.2", 7))}, "idle"},
        CheckFact{"equalVersionWrittenOtherwise", {manifest(version("1.2.0", 8))}, "idle"},
        CheckFact{"otherProgramsOnly", {manifest(newer, "other")}, "Invalid server response"},
        CheckFact{"nothing", {"{}"}, "Invalid server response"},
        CheckFact{"brokenJson", {manifest(newer).chopped(1)}, "Invalid server response"},
        CheckFact{"statusIsNotExamined", {.body = manifest(newer), .status = 404}, "updateAvailable"},
        CheckFact{"noContentLength", {.body = manifest(newer), .tellsLength = false}, "updateAvailable"},
        CheckFact{"silent", {.silent = true}, "Network error: The server sent nothing for 1 seconds."},
        CheckFact{"dripping", {.drip = 1}, "Network error: The server did not send everything within 1 seconds."},
        CheckFact{"cutOff", {.body = manifest(newer), .cutOffAfter = 20}, "Network error: "},
        CheckFact{"withoutTls", {.status = 302, .headers = "Location: http://localhost/\r\n"}, "Network error: "},
        CheckFact{"oversized", {QByteArray(2 << 20, ' ')}, "Network error: The server sent more than"}),
    [](const auto& fact) { return std::string(fact.param.name); });

using UpdateCheck = ManagerCase;

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
