#include "Managers/LeftOvers.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <functional>

#include "Managers/InstallerScript.h"
#include "Managers/TreeDigest.h"
#include "Platform/FileDescriptor.h"
#include "Tests/Managers/ManagerCase.h"

using namespace gavrel;

namespace {

namespace fs = std::filesystem;

/// A folder with bundles of a program, and what interrupted installations leave there.
class LeftOvers : public testing::Test {
 protected:
  static void writeBundle(const fs::path& folder, const char* identifier = "org.gavrel.gavrel") {
    fs::create_directories(folder / "bin");
    std::ofstream(folder / "Info.plist") << "<plist version=\"1.0\"><dict><key>CFBundleExecutable</key>"
                                            "<string>bin/gavrel</string><key>CFBundleIdentifier</key><string>"
                                         << identifier << "</string></dict></plist>";
    std::ofstream(folder / "bin/gavrel") << "#!/bin/sh\n";
    fs::permissions(folder / "bin/gavrel", fs::perms(0755));
  }

  /// The names in the folder after a start of this bundle's program.
  [[nodiscard]] std::string settle(const fs::path& started) const {
    std::set<std::string> names;
    if (const auto failure = settleInstallation(started / "bin/gavrel")) names.insert(failure->reason);
    for (const auto& entry : fs::directory_iterator(files.path())) names.insert(entry.path().filename());
    std::string all;
    for (const std::string& name : names) all += (all.empty() ? "" : " ") + name;
    return all;
  }

  TemporaryFolder files;
  const fs::path bundle = files / "Gavrel.app";
  const fs::path former = files / "Gavrel.app.old";
  const fs::path copy = files / "Gavrel.app.new";
  const fs::path mark = files / "Gavrel.app.update";  // of an installation, beside what it makes
};

TEST_F(LeftOvers, AreRemovedWhereTheyAreOursAndNobodyNeedsThem) {
  const auto put = [](const fs::path& file, const char* content) { std::ofstream(file) << content; };
  const std::tuple<const char*, const char*, std::function<void()>> cases[] = {
      {"a former version", "Gavrel.app", [&] { writeBundle(former); }},
      {"a copy", "Gavrel.app", [&] { writeBundle(copy); }},
      {"empty folders", "Gavrel.app", [&] { fs::create_directory(copy), fs::create_directory(former); }},
      {"a copy hardly begun", "Gavrel.app", [&] { fs::create_directory(copy), put(copy / "Info.plist", ""); }},
      {"somebody's own copies", "Gavrel.app Gavrel.app.new Gavrel.app.old",
       [&] { writeBundle(former), writeBundle(copy), fs::remove(mark); }},
      {"another program", "Gavrel.app Gavrel.app.old", [&] { writeBundle(former, "org.other"); }},
      {"a drawing", "Gavrel.app Gavrel.app.new", [&] { fs::create_directory(copy), put(copy / "drawing.json", "{}"); }},
      {"a file", "Gavrel.app Gavrel.app.old Gavrel.app.update", [&] { put(former, ""); }},
      {"a link", "Gavrel.app Gavrel.app.old Gavrel.app.update Other",
       [&] { writeBundle(files / "Other"), fs::create_symlink("Other", former); }},
  };
  for (const auto& [name, left, make] : cases) {
    SCOPED_TRACE(name);
    writeBundle(bundle);
    put(mark, "");
    make();
    EXPECT_EQ(settle(bundle), left);
    for (const auto& entry : fs::directory_iterator(files.path())) fs::remove_all(entry);
  }
  writeBundle(former);
  EXPECT_EQ(settle(former), "Gavrel.app.old") << "kept by hand";
  if (::geteuid() != 0) return;
  writeBundle(bundle);
  put(mark, "");
  ASSERT_EQ(::chown(former.c_str(), 65534, 65534), 0);
  EXPECT_EQ(settle(bundle), "Gavrel.app Gavrel.app.old") << "somebody else's";
}

TEST_F(LeftOvers, StayWhileAnInstallationGoesOn) {
  const auto lock = [](const fs::path& folder) {
    FileDescriptor file(::open(folder.c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(::flock(file.get(), LOCK_EX), 0);
    return file;
  };
  writeBundle(copy);
  std::ofstream(mark).put('\n');
  {
    const auto copying = lock(copy);
    writeBundle(bundle);
    EXPECT_EQ(settle(bundle), "Gavrel.app Gavrel.app.new Gavrel.app.update");
    fs::rename(bundle, former);
    EXPECT_EQ(settle(former), "Gavrel.app.new Gavrel.app.old Gavrel.app.update");
    fs::rename(copy, bundle);
    EXPECT_EQ(settle(bundle), "Gavrel.app Gavrel.app.old Gavrel.app.update");
  }
  EXPECT_EQ(settle(former), "Gavrel.app Gavrel.app.old Gavrel.app.update") << "started by hand beside a whole one";
  EXPECT_EQ(settle(bundle), "Gavrel.app");

  fs::rename(bundle, former);
  writeBundle(copy);
  std::ofstream(mark).put('\n');
  EXPECT_EQ(settle(former), "Gavrel.app") << "which gets its name back";
  EXPECT_EQ(settle(files / "no bundle"), "Gavrel.app");
}

TEST_F(LeftOvers, AnInstallationThatIsKilledAtAnyStepLeavesAWholeBundle) {
  const fs::path update = files / "update/Gavrel.app";
  const auto computeDigest = [](const fs::path& folder) { return *treeDigest(folder); };
  writeBundle(update);
  std::ofstream(update / "new file").put('2');
  fs::permissions(update / "bin/gavrel", fs::perms(0600));
  files.put("install.sh", linuxInstallerScript(bundle, update, "bin/gavrel", computeDigest(update)));
  // Kills the script before one of its own steps, counted from 1.
  files.put("kill.sh",
            "set -T; step=0 last=$1; sleep() { :; }\n"
            "trap '((BASH_SUBSHELL == 0 && ++step == last)) && kill -KILL $$' DEBUG; source ./install.sh\n");
  const std::string command = "cd " + files.path().string() + " && exec /bin/bash ./kill.sh ";
  std::set<std::string> seen;
  int step = 0;
  for (int status = SIGKILL; status == SIGKILL && step < 500;) {
    writeBundle(bundle);
    const std::string old = computeDigest(bundle);
    status = std::system((command + std::to_string(++step)).c_str());
    const fs::path whole = fs::exists(bundle) ? bundle : former;
    EXPECT_TRUE(computeDigest(whole) == old || (whole == bundle && computeDigest(whole) == computeDigest(update)))
        << step;
    EXPECT_EQ(::access((whole / "bin/gavrel").c_str(), X_OK), 0) << step;
    seen.insert(whole.string() + computeDigest(whole));
    EXPECT_EQ(settle(whole), "Gavrel.app install.sh kill.sh update") << step;
    fs::remove_all(bundle);
  }
  EXPECT_EQ(seen.size(), 3u) << "former in its place, former renamed, new";
  EXPECT_GT(step, 20);
}

TEST_F(LeftOvers, AToolThatDiesWithoutAWordHasTheFormerProgramStarted) {
  writeBundle(bundle);
  std::ofstream(bundle / "bin/gavrel") << "#!/bin/sh\necho \"$*\" >\"${0%/*}/started\"\n";
  files.put("install.sh", linuxInstallerScript(bundle, bundle, "bin/gavrel", ""));
  files.put("run.sh", "sleep() { :; }; cp() { return 137; }; source ./install.sh\n");
  EXPECT_EQ(std::system(("cd " + files.path().string() + " && GAVREL_OWN_1=A=b exec /bin/bash ./run.sh").c_str()), 0);
  EXPECT_EQ(files.get("Gavrel.app/bin/started"), "--update-failed=A tool was ended from outside.\n");
}

}  // namespace
