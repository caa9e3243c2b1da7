#include <gmock/gmock.h>
#include <unistd.h>

#include "Managers/InstallerScript.h"
#include "Tests/Managers/ManagerCase.h"

namespace {

namespace fs = std::filesystem;

TEST(InstallerScript, WhereBundlesAreOpened) {
  EXPECT_EQ(bundleInstallerScript("/A b/G.app", "/t/extracted/G $2.app"),
            "#!/bin/bash\n"
            "sleep 2\n"
            "mv \"/A b/G.app\" \"/A b/G.app.old\"\n"
            "cp -R \"/t/extracted/G $2.app\" \"/A b/\"\n"
            "if [ $? -eq 0 ]; then\n"
            "    rm -rf \"/A b/G.app.old\"\n"
            "    chmod -R 755 \"/A b/G.app\"\n"
            "    xattr -dr com.apple.quarantine \"/A b/G.app\"\n"
            "    open \"/A b/G.app\"\n"
            "else\n"
            "    mv \"/A b/G.app.old\" \"/A b/G.app\"\n"
            "fi");
}

TEST(InstallerScript, FirstEntryWithTheExtension) {
  EXPECT_EQ(firstAppEntry({"a.App", "b.app.old", ".app", "app", "c d.app", "e.app"}), "c d.app");
  EXPECT_EQ(firstAppEntry({".hidden.app", "x.app"}), ".hidden.app");
  EXPECT_EQ(firstAppEntry({}), std::nullopt);
}

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

  void writeProgram(const fs::path& bundle, const std::string& name) const {
    std::ofstream(bundle / "bin/gavrel")
        << "#!/bin/bash\nprintf '" + name +
               ":%s' \"$*\" > \"${0%/*}/started.part\" && mv \"${0%/*}/started.part\" \"${0%/*}/started\"\n";
    fs::permissions(bundle / "bin/gavrel", fs::perms(0755));
  }

  /// Zips what stands in the update's folder, and installs it.
  void install(const QStringList& zipOptions = {}) {
    const QString folder = QString::fromStdString(update.string());
    fs::remove(files / "update.zip");
    runTool("zip", QStringList{"-qry"} + zipOptions + QStringList{"../update.zip", "."}, folder);
    installArchive();
  }

  /// Serves, downloads and installs the archive.
  void installArchive() {
    server.answers["/update.zip"] = {QByteArray::fromStdString(files.get("update.zip"))};
    start();
    manager->downloadUpdate({"2.0", 1, server.address() + "/update.zip", "", false, {}});
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

TEST_F(Installer, AFailingCopyLeavesTheOldBundleAndStartsIt) {
  // A copy that ends for want of room, with a part of it written.
  fs::create_directory(files / "bin");
  files.put("bin/cp",
            "#!/bin/bash\nmkdir \"$4/Gavrel.app\" && echo part > \"$4/Gavrel.app/part\"\necho \"cp: no 'room'\" "
            ">&2\nexit 1\n");
  fs::permissions(files / "bin/cp", fs::perms(0755));
  const std::string path = std::getenv("PATH");
  ::setenv("PATH", ((files / "bin").string() + ":" + path).c_str(), 1);
  install();
  ASSERT_TRUE(happens([&] { return terminated; }));
  ::setenv("PATH", path.c_str(), 1);
  EXPECT_EQ(started(), "old:--update-failed=cp: no 'room'");
  EXPECT_FALSE(fs::exists(home / "Gavrel.app/part"));
  EXPECT_FALSE(fs::exists(home / "Gavrel.app.old"));
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

  install({"-P", "secret"});
  expectFailure("Failed to extract update");

  fs::create_directory(files / "outer");
  fs::rename(update, files / "outer/inner");
  fs::rename(files / "outer", update);
  install();
  expectFailure("App bundle not found in update");
}

TEST_F(Installer, ATruncatedArchiveIsNotInstalled) {
  install();
  ASSERT_TRUE(happens([&] { return terminated; }));
  ASSERT_EQ(started(), "new:");
  terminated = false;
  fs::remove(work / "install.sh");
  fs::resize_file(files / "update.zip", fs::file_size(files / "update.zip") / 2);
  installArchive();
  expectFailure("Failed to extract update");
}

TEST_F(Installer, ArchivesThatReachOutside) {
  // "../evil" when it is unpacked.
  fs::create_directory(update / "in");
  files.put("update/evil", "");
  runTool("zip", {"-q", "../../update.zip", "../evil"}, QString::fromStdString((update / "in").string()));
  installArchive();
  expectFailure("App bundle not found in update");
  EXPECT_FALSE(fs::exists(work / "evil"));
  EXPECT_TRUE(fs::exists(work / "extracted/evil"));

  // "around/.." is the bundle when read as a text, and the folder above it when followed.
  fs::create_symlink("..", update / "Gavrel.app/bin/around");
  for (const char* target : {"bin/around/..", "/etc", "../..", "bin/../../../x", "../Gavrel.app.other"}) {
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

  fs::remove(home / "Gavrel.app.old");
  fs::rename(update / "Gavrel.app", update / "Other.app");
  install();
  expectFailure("must be called Other.app");

  fs::rename(update / "Other.app/bin/gavrel", update / "Other.app/bin/other");
  install();
  expectFailure("does not contain the program bin/gavrel");
}

}  // namespace
