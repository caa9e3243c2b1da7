#include "Platform/AtomicFile.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <thread>

#include "Platform/FileBytes.h"
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
void replaceAndExit(const fs::path& file, const std::string& bytes) {
  const auto failure = replaceFile(file, bytes);
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

TEST(AtomicFile, CreatesAFileWithTheUsersPermissionsInTheCurrentFolder) {
  const TemporaryFolder folder;
  const auto before = fs::current_path();
  fs::current_path(folder.path());
  const mode_t old = ::umask(027);
  EXPECT_EQ(reasonOf(replaceFile("file", std::string("\0\n", 2))), "none");
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
    EXPECT_EQ(reasonOf(replaceFile(folder / c.link, c.link)), "none");
    EXPECT_EQ(folder.get(c.file), c.link);
    EXPECT_EQ(fs::read_symlink(folder / c.link), c.target);
    EXPECT_FALSE(fs::is_symlink(folder / c.file));
  }
  EXPECT_TRUE(fs::is_symlink(folder / "sub/hop"));
}

TEST(AtomicFile, TellsWhyNothingCanBeWritten) {
  const TemporaryFolder folder;
  EXPECT_EQ(reasonOf(replaceFile(folder.path(), "x")),
            "cannot write \"" + folder.path().string() + "\": Is a directory");
  EXPECT_THAT(reasonOf(replaceFile(folder / "a/b", "x")), HasSubstr("a/b\": No such file or directory"));
  folder.put("file", "old");
  EXPECT_THAT(reasonOf(replaceFile(folder / "file/below", "x")), HasSubstr("Not a directory"));
  fs::create_symlink("loop", folder / "loop");
  EXPECT_THAT(reasonOf(replaceFile(folder / "loop", "new")), HasSubstr("symbolic links"));
  EXPECT_TRUE(fs::is_symlink(folder / "loop"));
  EXPECT_EQ(folder.entries(), 2);
}

TEST(AtomicFile, LeavesTheOldFileWhenItCannotBeReplaced) {
  const TemporaryFolder folder;
  fs::permissions(folder.path(), fs::perms::all);
  const auto file = folder.put("file", "old");
  const auto writeTooMuch = [&] {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{4096, 4096};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    replaceAndExit(file, std::string(100000, 'x'));
  };
  EXPECT_EXIT(writeTooMuch(), testing::ExitedWithCode(3), "cannot write \".*/file\": File too large");
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

TEST(FileBytes, ReadsFilesOfAllSizes) {
  const TemporaryFolder folder;
  for (const std::size_t size : {0u, 1u, 65535u, 65536u, 65537u, 300000u}) {
    std::string content(size, 'a');
    if (size > 1) content[size / 2] = '\0';
    EXPECT_EQ(*readFile(folder.put("file", content)), content);
  }
}

TEST(FileBytes, ReadsAPipeToItsEnd) {
  const TemporaryFolder folder;
  const auto pipe = folder / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const std::string content(200000, 'p');
  std::jthread writer([&] { std::ofstream(pipe) << content; });
  EXPECT_EQ(*readFile(pipe), content);
}

}  // namespace
