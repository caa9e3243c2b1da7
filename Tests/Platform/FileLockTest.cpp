#include "Platform/FileLock.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <array>

#include "Tests/RefusedCalls.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

namespace fs = std::filesystem;

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

}  // namespace
