#include "Platform/AtomicFile.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <thread>

#include "Platform/Signals.h"
#include "Tests/RefusedCalls.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

mode_t permissions(const fs::path& file) {
  struct stat status {};
  return ::stat(file.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

std::string readReason(const std::optional<Failure>& failure) {
  return failure ? failure->reason : "none";
}

/// For the end of a child process: tells the parent what went wrong and exits, without any clean-up of the parent's.
void replaceAndExit(const fs::path& file, const std::string& bytes) {
  const auto failure = replaceFile(file, bytes);
  std::fputs(readReason(failure).c_str(), stderr);
  ::_exit(failure ? 3 : 0);
}

/// The same where there is room for 4096 bytes only.
void replaceWithoutRoomAndExit(const fs::path& file) {
  ::signal(SIGXFSZ, SIG_IGN);
  const rlimit limit{4096, 4096};
  ::setrlimit(RLIMIT_FSIZE, &limit);
  replaceAndExit(file, std::string(100000, 'x'));
}

TEST(AtomicFile, ReplacesTheContentAndKeepsThePermissions) {
  const TemporaryFolder folder;
  const auto file = folder.put("file", "a longer old content");
  for (const mode_t mode : {0640u, 0600u, 0755u}) {
    ::chmod(file.c_str(), mode);
    EXPECT_EQ(readReason(replaceFile(file, "new")), "none");
    EXPECT_EQ(folder.get("file"), "new");
    EXPECT_EQ(permissions(file), mode);
  }
  EXPECT_EQ(folder.entries(), 1);
}

TEST(AtomicFile, CreatesAFileWithTheUsersPermissionsInTheCurrentFolder) {
  const TemporaryFolder folder;
  const auto before = fs::current_path();
  fs::current_path(folder.path());
  const mode_t old = ::umask(027);
  EXPECT_EQ(readReason(replaceFile("file", std::string("\0\n", 2))), "none");
  EXPECT_EQ(::umask(old), 027u);
  fs::current_path(before);
  EXPECT_EQ(folder.get("file"), std::string("\0\n", 2));
  EXPECT_EQ(permissions(folder / "file"), 0640u);
}

TEST(AtomicFile, FollowsAndKeepsSymbolicLinks) {
  const TemporaryFolder folder;
  fs::create_directory(folder / "sub");
  const struct {
    const char* link;
    fs::path target;
    const char* file;  // where the content must arrive
  } cases[] = {{"relative", "sub/one", "sub/one"},
               {"absolute", folder / "sub/two", "sub/two"},
               {"chain", "sub/hop", "sub/three"},  // sub/hop leads on, from its own folder
               {"dangling", "sub/new", "sub/new"}};
  folder.put("sub/one", "old");
  folder.put("sub/two", "old");
  folder.put("sub/three", "old");
  fs::create_symlink("three", folder / "sub/hop");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.link);
    fs::create_symlink(c.target, folder / c.link);
    EXPECT_EQ(readReason(replaceFile(folder / c.link, c.link)), "none");
    EXPECT_EQ(folder.get(c.file), c.link);
    EXPECT_EQ(fs::read_symlink(folder / c.link), c.target);
    EXPECT_FALSE(fs::is_symlink(folder / c.file));
  }
  EXPECT_TRUE(fs::is_symlink(folder / "sub/hop"));
}

TEST(AtomicFile, TellsWhyNothingCanBeWritten) {
  const TemporaryFolder folder;
  EXPECT_EQ(readReason(replaceFile(folder.path(), "x")),
            "cannot write \"" + folder.path().string() + "\": Is a directory");
  EXPECT_THAT(readReason(replaceFile(folder / "a/b", "x")), HasSubstr("a/b\": No such file or directory"));
  folder.put("file", "old");
  EXPECT_THAT(readReason(replaceFile(folder / "file/below", "x")), HasSubstr("Not a directory"));
  fs::create_symlink("loop", folder / "loop");
  EXPECT_THAT(readReason(replaceFile(folder / "loop", "new")), HasSubstr("symbolic links"));
  EXPECT_TRUE(fs::is_symlink(folder / "loop"));
  EXPECT_EQ(folder.entries(), 2);
}

TEST(AtomicFile, LeavesTheOldFileWhenItCannotBeReplaced) {
  const TemporaryFolder folder;
  fs::permissions(folder.path(), fs::perms::all);
  const auto file = folder.put("file", "old");
  EXPECT_EXIT(replaceWithoutRoomAndExit(file), testing::ExitedWithCode(3), "cannot write \".*/file\": File too large");
  EXPECT_EQ(folder.get("file"), "old");
  const auto writeAsUser = [](const fs::path& to) {
    becomeOrdinaryUser();
    replaceAndExit(to, "new");
  };
  ::chmod(file.c_str(), 0444);
  EXPECT_EXIT(writeAsUser(file), testing::ExitedWithCode(3), "Permission denied");
  EXPECT_EQ(folder.get("file"), "old");
  EXPECT_EQ(folder.entries(), 1);
  EXPECT_EXIT(writeAsUser("/dev/null"), testing::ExitedWithCode(0), "none");  // devices are written directly
  EXPECT_EXIT(writeAsUser("/dev/full"), testing::ExitedWithCode(3), "\"/dev/full\": No space left on device");
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

/// Ends the process by a signal in the midst of writing, on this thread or another one.
void endWhileWriting(const fs::path& file, int signal, bool onThisThread) {
  const rlimit noCore{0, 0};
  ::setrlimit(RLIMIT_CORE, &noCore);
  keepFilesWholeOnSignals();
  std::jthread another([] { ::pause(); });
  const auto failure = replaceFile(file, [&](const ByteSink& sink) {
    sink("new");
    ::pthread_kill(onThisThread ? ::pthread_self() : another.native_handle(), signal);
    if (!onThisThread) ::pause();
    sink(" and more");
  });
  ::_exit(failure ? 3 : 0);
}

TEST(AtomicFile, LeavesNothingBesideItWhereverThereAreUnnamedFilesOrNot) {
  for (const RefusedCall* call : {static_cast<const RefusedCall*>(nullptr), &unnamedFiles, &namesForUnnamedFiles}) {
    const TemporaryFolder folder;
    const auto file = folder.put("file", "old");
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGABRT, SIGTERM, SIGXCPU, SIGKILL}) {
      if (signal == SIGKILL && call == &unnamedFiles) continue;  // nobody is left to remove it
      for (const bool onThisThread : {true, false}) {
        const auto end = [&](const fs::path& target) {
          if (call != nullptr) refuse(*call);
          endWhileWriting(target, signal, onThisThread);
        };
        EXPECT_EXIT(end(file), testing::KilledBySignal(signal), "");
        EXPECT_EXIT(end(folder / "new"), testing::KilledBySignal(signal), "");
        EXPECT_EQ(folder.get("file"), "old") << signal;
        EXPECT_EQ(folder.entries(), 1) << signal;
      }
    }
    const auto ignore = [&](const fs::path& target) {
      if (call != nullptr) refuse(*call);
      ::signal(SIGHUP, SIG_IGN);
      endWhileWriting(target, SIGHUP, true);
    };
    for (const char* name : {"file", "new"}) {
      EXPECT_EXIT(ignore(folder / name), testing::ExitedWithCode(0), "") << "ignored signals stay so";
      EXPECT_EQ(folder.get(name), "new and more");
    }
    EXPECT_EQ(folder.entries(), 2);
  }
}

/// A folder in which the test's ordinary user may write to `file`, "old", but not replace it.
struct LockedFolder {
  explicit LockedFolder(mode_t mode) {
    fs::permissions(folder.path(), fs::perms::all);
    ::chmod(file.c_str(), 0666);
    ::chmod(sub.c_str(), mode);
  }

  TemporaryFolder folder;
  const fs::path sub = [this] {
    fs::create_directory(folder / "sub");
    return folder / "sub";
  }();
  const fs::path file = folder.put("sub/file", "the old content");
};

TEST(AtomicFile, IsWrittenOverWhereNothingCanBePutInItsPlace) {
  if (::geteuid() != 0) GTEST_SKIP() << "The superuser has to own the folder.";
  constexpr mode_t closedToOthers = 0755;
  constexpr mode_t sticky = 01777;  // as /tmp: everybody may add files, and replace only their own
  for (const mode_t mode : {closedToOthers, sticky}) {
    const LockedFolder locked(mode);
    const auto as = [&](const auto& action) {
      becomeOrdinaryUser();
      if (whyNotReplaceable(locked.file)) ::_exit(5);
      action();
    };
    const auto write = [&](const std::string& bytes) { as([&] { replaceAndExit(locked.file, bytes); }); };
    for (const std::string& bytes : {std::string(200000, 'n'), std::string("short"), std::string()}) {
      EXPECT_EXIT(write(bytes), testing::ExitedWithCode(0), "none");
      EXPECT_EQ(locked.folder.get("sub/file"), bytes);
    }

    // No room: the old content is still there, whole.
    locked.folder.put("sub/file", "the old content");
    EXPECT_EXIT(as([&] { replaceWithoutRoomAndExit(locked.file); }), testing::ExitedWithCode(3),
                "cannot write \".*/file\": File too large");
    EXPECT_EQ(locked.folder.get("sub/file"), "the old content");
    EXPECT_EQ(std::distance(fs::directory_iterator(locked.sub), {}), 1);

    // Nothing there, and nothing can be: that is known before.
    const auto create = [&] {
      becomeOrdinaryUser();
      const auto refused = whyNotReplaceable(locked.sub / "new");
      std::fputs(readReason(refused).c_str(), stderr);
      ::_exit(refused ? 3 : 0);
    };
    EXPECT_EXIT(create(), testing::ExitedWithCode(mode == sticky ? 0 : 3), mode == sticky ? "none" : "denied");
  }
}

}  // namespace
