#include "Managers/ManifestTransfer.h"

#include <gmock/gmock.h>

#include <QFile>

#include "Tests/Managers/ManagerCase.h"
#include "Tests/Managers/SigningKeys.h"

using namespace gavrel;

namespace {

/// Checks on the first of June 2026 against a server whose manifests are signed.
class SignedCheck : public ManagerCase {
 protected:
  SignedCheck() {
    setup.publicKeys = {keys.publicKey("ours"), keys.publicKey("next")};
    setup.today = [] { return QDate(2026, 6, 1); };
  }

  /// The manifest that offers the version, with the date as it is spelt in JSON.
  [[nodiscard]] QByteArray manifest(const char* version, const char* date) const {
    QByteArray entry = encode({version, 7, server.address() + "/a.zip", "", false, {}});
    if (*date != '\0') entry = entry.chopped(1) + ",\"date\":" + date + "}";
    return "{\"brantel\":" + entry + "}";
  }

  void serve(const QByteArray& json, const char* signer = "ours") {
    server.answers["/versions.json"] = {json};
    server.answers["/versions.json.sig"] = {keys.signature(json, signer)};
  }

  /// How an explicit check ends: in this state or, where that is an error, with its description.
  std::string check() {
    history.clear();
    manager->checkForUpdates(true);
    EXPECT_TRUE(happens([&] { return history.size() == 2; }));
    return history.last() == "error" ? description() : history.last().toStdString();
  }

  /// How a silent one ends.
  std::string silentCheck() {
    manager->skipUpdate();
    history.clear();
    manager->checkForUpdates(false);
    EXPECT_TRUE(happens([&] { return history.size() == 2; }));
    return history.last().toStdString();
  }

  const SigningKeys keys;
  const std::string offered = "updateAvailable";
};

TEST_F(SignedCheck, JudgesTheDate) {
  const std::string toCome =
      "Check failed: No newer version is listed, but the list is of 2026-06-03, and the clock of this computer says "
      "2026-06-01.";
  const std::string tooOld =
      "Check failed: No newer version is listed, but the list is of 2026-03-02, more than 90 days before 2026-06-01. "
      "Newer versions may be withheld from you, or the clock";
  const std::string wrong = "Invalid server response";
  // The date, and how a check ends that finds nothing newer, and one that does.
  for (const auto& [date, nothing, newer] : std::initializer_list<std::tuple<const char*, std::string, std::string>>{
           {R"("2026-06-01")", "idle", offered},
           {R"("2026-06-02")", "idle", offered},
           {R"("2026-06-03")", toCome, offered},
           {R"("2026-03-03")", "idle", offered},
           {R"("2026-03-02")", tooOld, offered},
           {"", wrong, wrong},
           {"20260601", wrong, wrong},
           {R"("2026-6-1")", wrong, wrong},
           {R"("2026-02-30")", wrong, wrong},
           {R"("2026-06-01T12:00")", wrong, wrong}}) {
    QFile::remove(setup.settings);
    start();
    for (const auto& [version, outcome] : {std::pair{"1.2", nothing}, {"2.0", newer}}) {
      serve(manifest(version, date));
      EXPECT_THAT(check(), testing::StartsWith(outcome)) << date << version;
      EXPECT_EQ(silentCheck(), outcome == offered ? offered : "idle") << date << version;
    }
  }
}

TEST_F(SignedCheck, BelievesNothingWithoutItsMakersSignature) {
  const QByteArray json = manifest("2.0", R"("2026-06-01")");
  const QByteArray good = keys.signature(json, "ours");
  for (const auto& [signature, reason] : std::initializer_list<std::pair<Answer, const char*>>{
           {{keys.signature(json, "theirs")}, "The list of versions is not signed by the makers of this program."},
           {{keys.signature(manifest("1.9", R"("2026-06-01")"), "ours")}, "The list of versions is not signed"},
           {{good.chopped(1)}, "The list of versions is not signed"},
           {{good + "\n"}, "The signature of the list of versions: The server sent more than 64 bytes."},
           {{QByteArray(300, '-'), 404}, "The signature of the list of versions: The server answered 404."},
           {{.drip = 1},
            "The signature of the list of versions: The server did not send everything within 1 seconds."}}) {
    server.answers["/versions.json"] = {json};
    server.answers["/versions.json.sig"] = signature;
    setup.deadline = std::chrono::seconds(signature.drip > 0 ? 1 : 20);
    start();
    EXPECT_THAT(check(), testing::StartsWith(std::string("Check failed: ") + reason));
    EXPECT_EQ(silentCheck(), "idle");
  }
  for (const char* key : {"ours", "next"}) {
    serve(json, key);
    EXPECT_EQ(check(), "updateAvailable");
  }
}

TEST_F(SignedCheck, FollowsNoneThatIsOlderThanOneSeenBefore) {
  for (const auto& [date, outcome] : std::initializer_list<std::pair<const char*, const char*>>{
           {R"("2026-05-02")", "updateAvailable"},
           {R"("2026-05-01")",
            "Check failed: The list of versions is of 2026-05-01, but one of 2026-05-02 has been seen before. Newer "
            "versions may be withheld from you."},
           {R"("2026-05-02")", "updateAvailable"},
           {R"("2062-06-01")", "updateAvailable"},  // a slip, which is not remembered
           {R"("2026-06-02")", "updateAvailable"},
           {R"("2026-06-01")", "Check failed: The list of versions is of 2026-06-01, but one of 2026-06-02"}}) {
    start();
    serve(manifest("2.0", date));
    EXPECT_THAT(check(), testing::StartsWith(outcome)) << date;
    EXPECT_EQ(silentCheck(), outcome == offered ? offered : "idle") << date;
  }
}

}  // namespace
