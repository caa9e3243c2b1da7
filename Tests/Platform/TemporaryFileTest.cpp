#include "Platform/TemporaryFile.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

namespace fs = std::filesystem;

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

}  // namespace
