#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <random>
#include <thread>

#include "Tests/CommandLine/Command.h"
#include "Tests/RefusedCalls.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// What comes over one run of the command.
struct Blow {
  int signal = 0;  // 0: none
  Clock::duration after{};
  bool hasUnnamedFiles = true;  // the file system
  rlim_t largestFile = RLIM_INFINITY;
};

/// Runs gavrel-cli in the folder and returns its status as waitpid tells it.
int run(const TemporaryFolder& folder, const std::string& command, const Blow& blow) {
  const pid_t child = ::fork();
  if (child == 0) {
    const rlimit noCore{0, 0}, size{blow.largestFile, RLIM_INFINITY};
    ::setrlimit(RLIMIT_CORE, &noCore);
    ::setrlimit(RLIMIT_FSIZE, &size);
    if (!blow.hasUnnamedFiles) refuse(unnamedFiles);
    const int nowhere = ::open("/dev/null", O_RDWR);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(nowhere, stream);
    if (::chdir(folder.path().c_str()) != 0) ::_exit(127);
    std::vector<std::string> list = words(command);
    std::vector<char*> arguments{const_cast<char*>("gavrel-cli")};
    for (std::string& word : list) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    ::execv(GAVREL_CLI, arguments.data());
    ::_exit(127);
  }
  if (blow.signal != 0) {
    std::this_thread::sleep_for(blow.after);
    ::kill(child, blow.signal);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  while (::waitpid(-1, nullptr, 0) > 0) continue;  // what it has started
  return status;
}

/// A few signals for each command that writes, at random moments, or as many as GAVREL_SIGNALS asks for.
class Signals : public testing::TestWithParam<const char*> {};

TEST_P(Signals, LeaveTheOldFileOrTheNewOneAndNothingElse) {
  const std::string command = GetParam();
  const char* const asked = std::getenv("GAVREL_SIGNALS");
  const int rounds = asked != nullptr ? std::atoi(asked) : 10;
  ASSERT_EQ(::prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0), 0);

  const TemporaryFolder folder;
  ASSERT_EQ(run(folder, "generate tower --sections 200 -o model", {}), 0);
  ASSERT_EQ(run(folder, "export model --unsolved --nodes nodes.csv", {}), 0);
  const auto begin = Clock::now();
  ASSERT_EQ(run(folder, command, {}), 0);
  const auto duration = Clock::now() - begin;
  const std::string whole = folder.get("target");
  const auto files = folder.entries();

  std::mt19937 random(std::random_device{}());
  const auto below = [&random](auto end) { return std::uniform_int_distribution<decltype(end)>(0, end)(random); };
  int old = 0, replaced = 0;
  std::array<int, 2> left{};
  for (int i = 0; i < rounds; ++i) {
    constexpr std::array signals{SIGTERM, SIGINT, SIGHUP, SIGKILL, SIGXFSZ};
    Blow blow{.signal = signals[below(signals.size() - 1)], .hasUnnamedFiles = below(1) != 0};
    SCOPED_TRACE(std::to_string(blow.signal) + (blow.hasUnnamedFiles ? ", unnamed files" : ", named files"));
    if (blow.signal == SIGXFSZ) blow = {.hasUnnamedFiles = blow.hasUnnamedFiles, .largestFile = below(whole.size())};
    blow.after = Clock::duration(below(duration.count() * 11 / 10));
    const std::string former = below(1) != 0 ? "former" : "";  // or none
    fs::remove(folder / "target");
    if (!former.empty()) folder.put("target", former);

    const int status = run(folder, command, blow);
    const bool isReplaced = folder.get("target") == whole;
    EXPECT_TRUE(isReplaced || folder.get("target") == former);
    EXPECT_EQ(fs::exists(folder / "target"), isReplaced || !former.empty());
    const bool ended = blow.signal != 0 && status == blow.signal;
    EXPECT_TRUE(ended || status == (isReplaced ? 0 : 1 << 8)) << status;
    for (const auto& entry : fs::directory_iterator(folder.path())) {
      const std::string name = entry.path().filename();
      if (!name.starts_with(".gavrel-")) continue;
      // Only a kill leaves one, and an unnamed file just in the moment in which it takes the target's place.
      EXPECT_EQ(blow.signal, SIGKILL);
      EXPECT_TRUE(!blow.hasUnnamedFiles || folder.get(name) == whole);
      ++left[blow.hasUnnamedFiles ? 1 : 0];
      fs::remove(entry);
    }
    EXPECT_EQ(folder.entries(), files - (fs::exists(folder / "target") ? 0 : 1));
    ++(isReplaced ? replaced : old);
  }
  if (asked != nullptr)
    std::printf("%d old, %d new; kills left %d named files and %d others\n", old, replaced, left[0], left[1]);
}

INSTANTIATE_TEST_SUITE_P(Commands, Signals,
                         testing::Values("solve model -o target", "generate tower --sections 200 -o target",
                                         "import nodes.csv -o target", "export model --unsolved --nodes target",
                                         "export model --unsolved --elements target", "export model --vtu target"));
INSTANTIATE_TEST_SUITE_P(Pictures, Signals, testing::Values("export model --unsolved --png target"));

}  // namespace
