#include "Platform/FileBytes.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <fstream>
#include <string>
#include <thread>

#include "Tests/TemporaryFolder.h"

namespace {

TEST(FileBytes, ReadsFilesOfAllSizes) {
  const TemporaryFolder folder;
  for (const std::size_t size : {0u, 1u, 65535u, 65536u, 65537u, 300000u}) {
    std::string content(size, 'a');
    if (size > 1) content[size / 2] = '\0';
    const auto bytes = readFile(folder.put("file", content));
    ASSERT_TRUE(bytes) << size;
    EXPECT_EQ(*bytes, content) << size;
  }
}

TEST(FileBytes, ReadsAPipeToItsEnd) {
  const TemporaryFolder folder;
  const auto pipe = folder / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const std::string content(200000, 'p');
  std::jthread writer([&] { std::ofstream(pipe) << content; });
  const auto bytes = readFile(pipe);
  ASSERT_TRUE(bytes);
  EXPECT_EQ(*bytes, content);
}

TEST(FileBytes, TellsWhichFileCannotBeReadAndWhy) {
  const TemporaryFolder folder;
  const auto missing = readFile(folder / "missing");
  ASSERT_FALSE(missing);
  EXPECT_EQ(missing.failure().reason,
            "cannot open \"" + (folder / "missing").string() + "\": No such file or directory");
  const auto directory = readFile(folder.path());
  ASSERT_FALSE(directory);
  EXPECT_EQ(directory.failure().reason, "cannot read \"" + folder.path().string() + "\": Is a directory");
}

}  // namespace
