#include "Managers/Installation.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include "Tests/Managers/ManagerCase.h"
#include "Tests/Managers/SigningKeys.h"

using namespace gavrel;

namespace {

namespace fs = std::filesystem;

/// A running bundle whose program writes down with which arguments it is started, and an update for it.
class Installer : public ManagerCase {
 protected:
  Installer() {
    fs::create_directories(home / "Gavrel.app/bin");
    writeProgram(home / "Gavrel.app", "old");
    setup.bundle.url = home / "Gavrel.app";
    setup.bundle.executable = "bin/gavrel";
    fs::create_directories(update / "Gavrel.app/bin");
    writeProgram(update / "Gavrel.app", "new");
  }

  /// What it does not change is written down, too: the environment that it was started with.
  void writeProgram(const fs::path& bundle, const std::string& name) const {
    std::ofstream(bundle / "bin/gavrel")
        << "#!/bin/sh\ncd \"${0%/*}\" && cat /proc/$$/environ > environment && printf '" + name +
               ":%s' \"$*\" > started.part && mv started.part started\n";
    fs::permissions(bundle / "bin/gavrel", fs::perms(0755));
  }

  /// Zips what stands in the update's folder, and installs it.
  void install(const QStringList& zipOptions = {}) {
    zip(zipOptions);
    installArchive();
  }

  void zip(const QStringList& options = {}) const {
    const QString folder = QString::fromStdString(update.string());
    fs::remove(files / "update.zip");
    runTool("zip", QStringList{"-qry"} + options + QStringList{"../update.zip", "."}, folder);
  }

  /// Serves, downloads and installs the archive.
  void installArchive() {
    server.answers["/update.zip"] = {QByteArray::fromStdString(files.get("update.zip"))};
    start();
    manager->downloadUpdate(offer);
    ASSERT_TRUE(becomes("downloaded"));
    history.clear();
    manager->installUpdate(manager->state->info, manager->state->archive);
  }

  /// What the program in the bundle has written down, once it has started.
  std::string started() {
    const fs::path note = home / "Gavrel.app/bin/started";
    if (!happens([&] { return fs::exists(note); })) return "nothing";
    std::ifstream file(note);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  void expectFailure(const std::string& text) {
    ASSERT_TRUE(becomes("error"));
    EXPECT_THAT(description(), testing::AllOf(testing::StartsWith("Installation failed: "), testing::HasSubstr(text)));
    EXPECT_EQ(history, (QStringList{"installing", "error"}));
    EXPECT_FALSE(terminated);
    EXPECT_FALSE(fs::exists(work / "install.sh"));
    EXPECT_TRUE(fs::exists(home / "Gavrel.app/bin/gavrel"));
  }

  const fs::path home = files / "a \"b\" 'c' $HOME `d`\n\\e";
  const fs::path update = files / "update";
  VersionInfo offer{"2.0", 1, server.address() + "/update.zip", "", false, {}};
  const fs::path work = files / ("gavrel-" + std::to_string(::geteuid())) / "brantelUpdate";
};

TEST_F(Installer, DoesNotBeginWhileThereIsAReasonAgainst) {
  QString reason = "the disk is full";
  setup.whyNotNow = [&] { return reason; };
  install();
  ASSERT_TRUE(becomes("error"));
  EXPECT_EQ(description(), "Installation failed: Save your changes first, they would be lost: the disk is full");
  EXPECT_EQ(history, QStringList("error"));
  EXPECT_FALSE(fs::exists(work / "install.sh"));
  EXPECT_FALSE(terminated);
  reason.clear();
  install();
  EXPECT_TRUE(happens([&] { return terminated; }));
  EXPECT_EQ(started(), "new:");
}

TEST_F(Installer, ReplacesTheBundleAndStartsTheNewOne) {
  files.put("update/Gavrel.app/new file", "");
  fs::permissions(update / "Gavrel.app/bin/gavrel", fs::perms(0600));
  install();
  ASSERT_TRUE(happens([&] { return terminated; }));
  EXPECT_EQ(history, QStringList("installing"));
  EXPECT_EQ(fs::status(work / "install.sh").permissions(), fs::perms(0755));
  EXPECT_EQ(started(), "new:");
  EXPECT_TRUE(fs::exists(home / "Gavrel.app/new file"));
  EXPECT_FALSE(fs::exists(home / "Gavrel.app.old"));
  EXPECT_EQ(fs::status(home / "Gavrel.app/new file").permissions(), fs::perms(0755));
}

TEST_F(Installer, WhatFailsLaterLeavesTheOldBundleAndStartsIt) {
  const fs::path copy = home / "Gavrel.app.new";
  const std::tuple<std::string, std::function<void()>, bool> faults[] = {
      {"cp: cannot stat '" + (work / "extracted").string(), [&] { fs::remove_all(work / "extracted"); }, false},
      {"The copy of the update is not what was checked.",
       [&] { std::ofstream(work / "extracted/Gavrel.app/more").put('x'); }, false},
      {"mkdir: cannot create directory", [&] { fs::create_directory(copy); }, true}};
  for (const auto& [reason, makeFail, isInTheWay] : faults) {
    terminated = false;
    fs::remove(home / "Gavrel.app/bin/started");
    install();
    ASSERT_TRUE(happens([&] { return terminated; }));
    makeFail();
    EXPECT_THAT(started(), testing::StartsWith("old:--update-failed=" + reason));
    EXPECT_EQ(fs::exists(copy), isInTheWay);
    EXPECT_FALSE(fs::exists(home / "Gavrel.app.old"));
  }
}

TEST_F(Installer, ToolsDoNotObeyTheUsersEnvironmentWhichTheNewProgramGets) {
  files.put("evil", "exit 1\n");
  files.put("cp", "#!/bin/sh\nexit 1\n");
  fs::permissions(files / "cp", fs::perms(0755));
  fs::copy(files / "cp", files / "nice");
  const char* const ownPath = std::getenv("PATH");
  ASSERT_NE(ownPath, nullptr);
  const std::string path = ownPath;
  std::map<std::string, std::string> variables = {{"PATH", files.path().string() + ":" + path},
                                                  {"BASH_FUNC_mkdir%%", "() { exit 1; }"},
                                                  {"UNZIP", "-t"},
                                                  {"TAR_OPTIONS", "--exclude=bin"},
                                                  {"BASH_ENV", files / "evil"},
                                                  {"NO_UTF8", "\xff\n"}};
  // Together more than half of what a program's arguments and environment may take.
  for (char c = 'A'; c <= 'L'; ++c) variables[std::string("LARGE_") + c] = std::string(100000, c);
  for (const auto& [name, value] : variables) ::setenv(name.c_str(), value.c_str(), 1);
  std::set<std::string> own;
  for (char** variable = ::environ; *variable != nullptr; ++variable) own.insert(*variable);
  install();
  EXPECT_TRUE(happens([&] { return terminated; }));
  for (const auto& [name, value] : variables) ::unsetenv(name.c_str());
  ::setenv("PATH", path.c_str(), 1);
  EXPECT_EQ(started(), "new:");
  std::ifstream environment(home / "Gavrel.app/bin/environment");
  std::set<std::string> got;
  for (std::string variable; std::getline(environment, variable, '\0');) got.insert(variable);
  EXPECT_EQ(got, own);
}

TEST_F(Installer, ProgramsOutsideABundleAreLeftToThePackageManager) {
  setup.bundle.url.reset();
  install();
  expectFailure("Please update it through the package manager");
  EXPECT_FALSE(fs::exists(work / "extracted"));
}

TEST_F(Installer, UnusableArchives) {
  files.put("update.zip", "no zip file");
  installArchive();
  expectFailure("Failed to extract update");

  zip();
  fs::resize_file(files / "update.zip", fs::file_size(files / "update.zip") / 2);
  installArchive();
  expectFailure("Failed to extract update");

  install({"-P", "secret"});
  expectFailure("Failed to extract update");

  fs::create_directory(files / "outer");
  fs::rename(update, files / "outer/inner");
  fs::rename(files / "outer", update);
  install();
  expectFailure("App bundle not found in update");
}

TEST_F(Installer, ArchivesThatReachOutside) {
  // "../evil" when it is unpacked.
  fs::create_directory(update / "in");
  files.put("update/evil", "");
  ::setenv("UNZIP", "-:", 1);  // would let it out
  runTool("zip", {"-q", "../../update.zip", "../evil"}, QString::fromStdString((update / "in").string()));
  installArchive();
  expectFailure("App bundle not found in update");
  EXPECT_FALSE(fs::exists(work / "evil"));
  EXPECT_TRUE(fs::exists(work / "extracted/evil"));
  ::unsetenv("UNZIP");

  // "around/.." is the bundle when read as a text, and the folder above it when followed.
  fs::create_symlink("..", update / "Gavrel.app/bin/around");
  const fs::path inside = work / "extracted/Gavrel.app/bin";  // as long as it stands there
  for (const char* target :
       {"bin/around/..", "/etc", "../..", "bin/../../../x", "../Gavrel.app.other", inside.c_str()}) {
    fs::remove(update / "Gavrel.app/link");
    fs::create_symlink(target, update / "Gavrel.app/link");
    install();
    expectFailure("not a self-contained application bundle");
  }

  fs::remove_all(update / "Gavrel.app");
  fs::create_symlink(home / "Gavrel.app", update / "Gavrel.app");
  install();
  expectFailure("not a self-contained application bundle");
}

TEST_F(Installer, WhatCannotBeReplacedIsLeftAlone) {
  fs::create_symlink("bin/gavrel", update / "Gavrel.app/start");  // links inside are fine
  fs::create_directory(home / "Gavrel.app.old");
  install();
  expectFailure("Gavrel.app.old is in the way");

  fs::rename(home / "Gavrel.app.old", home / "Gavrel.app.new");
  install();
  expectFailure("Gavrel.app.new is in the way");

  fs::rename(update / "Gavrel.app", update / "Other.app");
  install();
  expectFailure("must be called Other.app");

  fs::rename(update / "Other.app/bin/gavrel", update / "Other.app/bin/other");
  install();
  expectFailure("does not contain the program bin/gavrel");
}

TEST_F(Installer, ASignedUpdateIsWhatWasOfferedAndNewer) {
  const SigningKeys keys;
  setup.publicKeys = {keys.publicKey("ours")};
  setup.bundle.dictionary["CFBundleIdentifier"] = "org.gavrel.gavrel";
  struct Case {
    const char* identifier;
    const char* version;
    const char* build;
    const char* offered;
    qint64 offeredBuild;
    const char* reason;
  };
  const char* const ours = "org.gavrel.gavrel";
  for (const Case& test : std::initializer_list<Case>{
           {ours, "1.1", "9", "2.0", 9, "The update is version 1.1 (build 9), and 2.0 (build 9) was offered."},
           {ours, "2.0", "1", "2.0", 2, "The update is version 2.0 (build 1), and 2.0 (build 2) was offered."},
           {ours, "1.1", "9", "1.1", 9, "The update is version 1.1 (build 9), which is not newer than 1.2 (build 7)."},
           {ours, "1.2", "7", "1.2", 7, "The update is version 1.2 (build 7), which is not newer than 1.2 (build 7)."},
           {"org.other", "2.0", "1", "2.0", 1,
            "The update is another program: its identifier is \"org.other\", not "
            "\"org.gavrel.gavrel\"."},
           {ours, "1.2", "8", "1.2", 8, nullptr}}) {
    files.put("update/Gavrel.app/Info.plist",
              std::string("<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>") + test.identifier +
                  "</string><key>CFBundleShortVersionString</key><string>" + test.version +
                  "</string><key>CFBundleVersion</key><string>" + test.build + "</string></dict></plist>");
    offer.version = test.offered;
    offer.build = test.offeredBuild;
    zip();
    server.answers["/update.zip.sig"] = {keys.signature(QByteArray::fromStdString(files.get("update.zip")), "ours")};
    installArchive();
    if (test.reason != nullptr) expectFailure(test.reason);
  }
  ASSERT_TRUE(happens([&] { return terminated; }));
  EXPECT_EQ(started(), "new:");
}

}  // namespace
