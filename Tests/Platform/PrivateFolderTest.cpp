#include "Platform/PrivateFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

namespace fs = std::filesystem;

TEST(PrivateFolder, IsOneThatBelongsToThisUserAloneAndStaysTheSame) {
  const TemporaryFolder folder;
  ::setenv("TMPDIR", folder.path().c_str(), 1);
  const fs::path usual = folder / ("gavrel-" + std::to_string(::geteuid()));
  const auto found = [] { return *privateTemporaryFolder(); };
  for (int i = 0; i < 2; ++i) {  // made, and found
    EXPECT_EQ(found(), usual);
    EXPECT_EQ(fs::status(usual).permissions(), fs::perms::owner_all);
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

}  // namespace
