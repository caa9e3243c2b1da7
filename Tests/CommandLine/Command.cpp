#include "Tests/CommandLine/Command.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

#include "DataModel/ProjectFile.h"

namespace {

std::array<int, 2> openPipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("pipe2");
  return ends;
}

std::array<int, 2> openTerminal() {
  std::array<int, 2> ends{};
  if (::openpty(ends.data(), &ends[1], nullptr, nullptr, nullptr) != 0) throw std::runtime_error("openpty");
  return ends;
}

/// In the child: gives the program its streams and starts it.
[[noreturn]] void start(const std::vector<std::string>& arguments, int output, int errors) {
  const rlimit noCore{0, 0};
  ::setrlimit(RLIMIT_CORE, &noCore);
  ::dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO);
  ::dup2(output, STDOUT_FILENO);
  ::dup2(errors, STDERR_FILENO);
  std::vector<char*> words{const_cast<char*>("gavrel-cli")};
  for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  ::execv(GAVREL_CLI, words.data());
  ::_exit(127);
}

/// Reads both streams until both have ended.
void collect(int output, int errors, CommandOutcome& outcome) {
  std::array<pollfd, 2> streams{{{output, POLLIN, 0}, {errors, POLLIN, 0}}};
  std::array<std::string*, 2> texts{&outcome.output, &outcome.errors};
  while (streams[0].fd >= 0 || streams[1].fd >= 0) {
    ::poll(streams.data(), streams.size(), -1);
    for (std::size_t i = 0; i < streams.size(); ++i) {
      if (streams[i].fd < 0 || streams[i].revents == 0) continue;
      std::array<char, 4096> buffer{};
      const ssize_t got = ::read(streams[i].fd, buffer.data(), buffer.size());
      if (got > 0) {
        texts[i]->append(buffer.data(), static_cast<std::size_t>(got));
      } else {
        streams[i].fd = -1;  // a terminal whose other end is gone reports an error instead of an end
      }
    }
  }
}

std::shared_ptr<Project> singleBar() {
  auto project = std::make_shared<Project>("Single bar");
  project->addNode({0, 0, 0});
  project->addNode({2, 0, 0});
  project->trussElements.edit().emplace_back(0, 0, 1, Vector3{0, 0, 0}, Vector3{2, 0, 0}, 2.0, 1000.0, false, false);
  project->setLoadAndRestraint(0, {}, true, true, true);
  project->setLoadAndRestraint(1, {20, 0, 0}, false, true, true);
  return project;
}

}  // namespace

CommandOutcome gavrelCli(const std::vector<std::string>& arguments, const CommandStreams& streams) {
  const auto output = openPipe();
  const auto errors = streams.errorsToTerminal ? openTerminal() : openPipe();
  const int target = streams.outputPath.empty() ? output[1] : ::open(streams.outputPath.c_str(), O_WRONLY | O_CLOEXEC);
  const pid_t child = ::fork();
  if (child == 0) start(arguments, target, errors[1]);
  for (const int descriptor : {output[1], errors[1]}) ::close(descriptor);
  if (!streams.outputPath.empty()) ::close(target);

  CommandOutcome outcome;
  collect(output[0], errors[0], outcome);
  for (const int descriptor : {output[0], errors[0]}) ::close(descriptor);
  int status = 0;
  ::waitpid(child, &status, 0);
  if (WIFEXITED(status)) outcome.status = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) outcome.signal = WTERMSIG(status);
  return outcome;
}

std::string singleBarJson() {
  return *encodeProject(*singleBar());
}

std::string loadOnRestraintJson() {
  const auto project = singleBar();
  project->F_I.edit()[7] = 5;
  return *encodeProject(*project);
}
