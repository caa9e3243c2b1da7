#include "Platform/AtomicFile.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "Tests/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

mode_t permissions(const fs::path& file) {
  struct stat status {};
  return ::stat(file.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

std::string reasonOf(const std::optional<Failure>& failure) {
  return failure ? failure->reason : "none";
}

/// For the end of a child process: tells the parent what went wrong and exits, without any clean-up of the parent's.
void reportAndExit(const std::optional<Failure>& failure) {
  std::fputs(reasonOf(failure).c_str(), stderr);
  ::_exit(failure ? 3 : 0);
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
    EXPECT_EQ(reasonOf(replaceFile(file, "new")), "none");
    EXPECT_EQ(folder.get("file"), "new");
    EXPECT_EQ(permissions(file), mode);
  }
  EXPECT_EQ(folder.entries(), 1);
}

TEST(AtomicFile, CreatesAFileWithTheUsersPermissions) {
  const TemporaryFolder folder;
  const mode_t old = ::umask(027);
  const auto failure = replaceFile(folder / "file", std::string("\0\n", 2));
  EXPECT_EQ(::umask(old), 027u) << "the mask is the user's";
  EXPECT_EQ(reasonOf(failure), "none");
  EXPECT_EQ(folder.get("file"), std::string("\0\n", 2));
  EXPECT_EQ(permissions(folder / "file"), 0640u);
}

TEST(AtomicFile, WritesInTheCurrentFolder) {
  const TemporaryFolder folder;
  const auto before = fs::current_path();
  fs::current_path(folder.path());
  EXPECT_EQ(reasonOf(replaceFile("bare", "content")), "none");
  fs::current_path(before);
  EXPECT_EQ(folder.get("bare"), "content");
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
    EXPECT_EQ(reasonOf(replaceFile(folder / c.link, c.link)), "none");
    EXPECT_EQ(folder.get(c.file), c.link);
    EXPECT_EQ(fs::read_symlink(folder / c.link), c.target);
    EXPECT_FALSE(fs::is_symlink(folder / c.file));
  }
  EXPECT_TRUE(fs::is_symlink(folder / "sub/hop"));
}

TEST(AtomicFile, RefusesALinkThatLeadsNowhere) {
  const TemporaryFolder folder;
  fs::create_symlink("loop", folder / "loop");
  EXPECT_THAT(reasonOf(replaceFile(folder / "loop", "new")), HasSubstr("symbolic links"));
  EXPECT_TRUE(fs::is_symlink(folder / "loop"));
  EXPECT_EQ(folder.entries(), 1);
}

TEST(AtomicFile, TellsWhyNothingCanBeWritten) {
  const TemporaryFolder folder;
  EXPECT_EQ(reasonOf(replaceFile(folder.path(), "x")),
            "cannot write \"" + folder.path().string() + "\": Is a directory");
  EXPECT_THAT(reasonOf(replaceFile(folder / "missing/file", "x")),
              HasSubstr("missing/file\": No such file or directory"));
  folder.put("file", "old");
  EXPECT_THAT(reasonOf(replaceFile(folder / "file/below", "x")), HasSubstr("Not a directory"));
  EXPECT_EQ(folder.entries(), 1);
}

TEST(AtomicFile, LeavesTheOldFileWhenTheDiskIsFull) {
  const TemporaryFolder folder;
  const auto file = folder.put("file", "old");
  const auto writeTooMuch = [&] {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{4096, 4096};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    reportAndExit(replaceFile(file, std::string(100000, 'x')));
  };
  EXPECT_EXIT(writeTooMuch(), testing::ExitedWithCode(3), "cannot write \".*/file\": File too large");
  EXPECT_EQ(folder.get("file"), "old");
  EXPECT_EQ(folder.entries(), 1);
}

TEST(AtomicFile, DoesNotReplaceAReadOnlyFile) {
  const TemporaryFolder folder;
  fs::permissions(folder.path(), fs::perms::all);
  const auto file = folder.put("file", "old");
  ::chmod(file.c_str(), 0444);
  const auto writeAsUser = [&] {
    becomeOrdinaryUser();
    reportAndExit(replaceFile(file, "new"));
  };
  EXPECT_EXIT(writeAsUser(), testing::ExitedWithCode(3), "Permission denied");
  EXPECT_EQ(folder.get("file"), "old");
  EXPECT_EQ(folder.entries(), 1);
}

TEST(AtomicFile, WritesDevicesDirectly) {
  const auto writeTo = [](const char* device) {
    becomeOrdinaryUser();
    reportAndExit(replaceFile(device, "gone"));
  };
  EXPECT_EXIT(writeTo("/dev/null"), testing::ExitedWithCode(0), "none");
  EXPECT_EXIT(writeTo("/dev/full"), testing::ExitedWithCode(3), "cannot write \"/dev/full\": No space left on device");
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

}  // namespace
