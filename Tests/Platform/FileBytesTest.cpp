#include "Platform/FileBytes.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>

#include <thread>

#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

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
  EXPECT_THAT(readPipe(100000).failure().reason, testing::HasSubstr("it has more than 100000 bytes"));
}

}  // namespace
