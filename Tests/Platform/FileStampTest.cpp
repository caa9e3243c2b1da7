#include "Platform/FileStamp.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>

#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

namespace fs = std::filesystem;

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

}  // namespace
