#include "Platform/AtomicFile.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>
#include <thread>

#include "Platform/FileBytes.h"
#include "Platform/FileLock.h"
#include "Platform/FileStamp.h"
#include "Platform/PrivateFolder.h"
#include "Platform/Signals.h"
#include "Platform/TemporaryFile.h"
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

/// Also for a child process: file permissions do not bind the superuser, and no fault may let it replace a device.
void becomeOrdinaryUser() {
  constexpr uid_t nobody = 65534;
  if (::geteuid() == 0 && ::setuid(nobody) != 0) ::_exit(4);
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

TEST(TemporaryFile, OfAKilledProcessIsSweptOnceNobodyCanBeWritingIt) {
  const TemporaryFolder folder;
  const pid_t dead = ::fork();
  if (dead == 0) ::_exit(0);
  ::waitpid(dead, nullptr, 0);
  const std::string gone = std::to_string(dead), here = std::to_string(::getpid());
  const auto now = fs::file_time_type::clock::now(), before = now - std::chrono::minutes(11);
  const auto beforeTheStart = now - std::chrono::years(20);
  const struct {
    std::string name;
    fs::file_time_type time;
    bool stays;
  } files[] = {{".gavrel-" + gone + "-0", before, false},
               {".gavrel-" + gone + "-1", now, true},
               {".gavrel-" + here + "-0", beforeTheStart, false},
               {".gavrel-" + here + "-1", now, true},
               {".gavrel-" + gone, beforeTheStart, true},
               {".gavrel-x-0", beforeTheStart, true},
               {"a.recovery", beforeTheStart, true}};
  for (const auto& file : files) fs::last_write_time(folder.put(file.name, "x"), file.time);
  sweepTemporaryFiles(folder.path());
  for (const auto& file : files) EXPECT_EQ(fs::exists(folder / file.name), file.stays) << file.name;
  sweepTemporaryFiles(folder / "none");
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

TEST(FileStamp, IsAnotherOneAfterEachChangeByAnybody) {
  const TemporaryFolder folder;
  const auto file = folder.put("file", "content");
  EXPECT_EQ(FileStamp::read(folder / "none"), std::nullopt);
  EXPECT_EQ(FileStamp::read(folder.path()), std::nullopt);
  const auto old = FileStamp::read(file);
  ASSERT_TRUE(old);
  EXPECT_EQ(FileStamp::read(file), old);
  fs::create_symlink(file, folder / "link");
  EXPECT_EQ(FileStamp::read(folder / "link"), old);
  ::chmod(file.c_str(), 0600);
  EXPECT_EQ(FileStamp::read(file), old);

  const auto time = fs::last_write_time(file);
  fs::last_write_time(file, time + std::chrono::nanoseconds(1000));  // the same bytes, written later
  EXPECT_NE(FileStamp::read(file), old);
  fs::last_write_time(file, time);
  EXPECT_EQ(FileStamp::read(file), old);
  folder.put("file", "longer content");
  fs::last_write_time(file, time);
  EXPECT_NE(FileStamp::read(file), old);
  folder.put("other", "content");
  fs::last_write_time(folder / "other", time);
  fs::rename(folder / "other", file);
  EXPECT_NE(FileStamp::read(file), old);
}

/// What a process that took the lock and is still running, or was killed, leaves to another one. Ends the process.
void takeFromAnother(const fs::path& file, bool locksWork, bool killed) {
  if (!locksWork) refuse(locks);
  std::array<int, 2> pipe{};
  if (::pipe(pipe.data()) != 0) ::_exit(7);
  const pid_t owner = ::fork();
  if (owner == 0) {
    const auto lock = FileLock::take(file);
    if (::write(pipe[1], lock ? "1" : "0", 1) != 1) ::_exit(7);
    ::pause();
  }
  char taken = 0;
  if (::read(pipe[0], &taken, 1) != 1 || taken != '1') ::_exit(7);
  if (killed) ::kill(owner, SIGKILL);
  siginfo_t ended{};
  if (killed) ::waitid(P_PID, static_cast<id_t>(owner), &ended, WEXITED | WNOWAIT);  // gone, but not waited for
  const bool free = FileLock::take(file).has_value();
  const bool freeAgain = FileLock::take(file).has_value();  // the one just taken is given back
  ::kill(owner, SIGKILL);
  ::_exit(free && freeAgain ? 1 : 0);
}

TEST(FileLock, IsFreeOnceItsOwnerIsGoneEvenWhereThereAreNoLocks) {
  const TemporaryFolder folder;
  for (const bool locksWork : {true, false}) {
    for (const bool killed : {true, false}) {
      SCOPED_TRACE(std::string(locksWork ? "locks" : "no locks") + (killed ? ", killed" : ", running"));
      EXPECT_EXIT(takeFromAnother(folder / "lock", locksWork, killed), testing::ExitedWithCode(killed ? 1 : 0), "");
    }
  }
  const auto readOnly = folder.put("read-only", "");
  ::chmod(folder.path().c_str(), 0755);
  ::chmod(readOnly.c_str(), 0444);
  const auto takeAsUser = [&] {
    becomeOrdinaryUser();
    ::_exit(FileLock::take(readOnly) ? 1 : 0);
  };
  EXPECT_EXIT(takeAsUser(), testing::ExitedWithCode(1), "");

  // What is named by a process of another machine, by one before the last start, and by one whose number another has.
  const auto self = std::to_string(::getpid());
  const auto line = [](const char* file) {
    std::string text;
    std::getline(std::ifstream(file) >> std::ws, text);
    return text;
  };
  const std::string machine = line("/etc/machine-id"), start = line("/proc/sys/kernel/random/boot_id");
  for (const auto& [owner, free] : {std::pair("another " + start + " 1 1\n", false),
                                    {machine + " before " + self + " 1\n", true},
                                    {machine + " " + start + " " + self + " 1\n", true},
                                    {std::string("nonsense"), true}}) {
    SCOPED_TRACE(owner);
    const auto lock = folder.put("named", owner);
    const auto take = [&] {
      refuse(locks);
      ::_exit(FileLock::take(lock) ? 1 : 0);
    };
    EXPECT_EXIT(take(), testing::ExitedWithCode(free ? 1 : 0), "");
  }
}

TEST(PrivateFolder, IsOneThatBelongsToThisUserAloneAndStaysTheSame) {
  const TemporaryFolder folder;
  ::setenv("TMPDIR", folder.path().c_str(), 1);
  const fs::path usual = folder / ("gavrel-" + std::to_string(::geteuid()));
  const auto found = [] { return *privateTemporaryFolder(); };
  for (int i = 0; i < 2; ++i) {  // made, and found
    EXPECT_EQ(found(), usual);
    EXPECT_EQ(permissions(usual), 0700u);
  }

  const fs::path next = usual.string() + "-1";
  const auto expectNext = [&](const std::string& taken) {
    for (int i = 0; i < 2; ++i) EXPECT_EQ(found(), next) << taken;
    fs::remove(usual);
    EXPECT_EQ(found(), next) << "free again: " << taken;
    fs::remove(next);
  };
  for (const mode_t mode : {0710u, 0704u, 0777u}) {
    fs::create_directory(usual);
    ::chmod(usual.c_str(), mode);
    expectNext(std::to_string(mode));
  }
  if (::geteuid() == 0) {
    ASSERT_EQ(::mkdir(usual.c_str(), 0700) | ::chown(usual.c_str(), 65534, 65534), 0);
    expectNext("somebody else's");
  }
  fs::create_directory(folder / "other");
  fs::create_symlink(folder / "other", usual);
  expectNext("a link");
  folder.put(usual.filename().string(), "");
  expectNext("a file");

  folder.put(usual.filename().string(), "");
  for (int i = 1; i < 100; ++i) folder.put(usual.filename().string() + "-" + std::to_string(i), "");
  const auto none = privateTemporaryFolder();
  ASSERT_FALSE(none);
  EXPECT_EQ(none.failure().reason, usual.string() + " and all names like it are taken by others");
  ::unsetenv("TMPDIR");
}

TEST(FileBytes, ReadsFilesOfAllSizesAndAPipeToItsEnd) {
  const TemporaryFolder folder;
  for (const std::size_t size : {0u, 1u, 65535u, 65536u, 65537u, 300000u}) {
    std::string content(size, 'a');
    if (size > 1) content[size / 2] = '\0';
    EXPECT_EQ(*readFile(folder.put("file", content)), content);
  }
  const auto pipe = folder / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const std::string content(200000, 'p');
  ::signal(SIGPIPE, SIG_IGN);  // a reader that has enough leaves
  const auto readPipe = [&](std::uint64_t most) {
    std::jthread writer([&] { std::ofstream(pipe) << content; });
    return readFile(pipe, most);
  };
  EXPECT_EQ(*readPipe(content.size()), content);
  EXPECT_THAT(readPipe(100000).failure().reason, HasSubstr("it has more than 100000 bytes"));
}

}  // namespace
