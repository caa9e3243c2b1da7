#include "Tests/CommandLine/Command.h"

#include <fcntl.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

#include "DataModel/ProjectFile.h"
#include "Tests/Structures.h"

namespace gavrel {

namespace {

/// The reading and the writing end of a pipe or a pseudo-terminal.
std::array<int, 2> openStream(bool isTerminal) {
  std::array<int, 2> ends{};
  if (isTerminal ? ::openpty(ends.data(), &ends[1], nullptr, nullptr, nullptr) : ::pipe2(ends.data(), O_CLOEXEC))
    throw std::runtime_error("no stream for the program");
  return ends;
}

/// In the child: gives the program its streams and starts it.
[[noreturn]] void start(const std::vector<std::string>& arguments, int output, int errors, rlim_t addressSpace) {
  const rlimit noCore{0, 0};
  ::setrlimit(RLIMIT_CORE, &noCore);
  ::dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO);
  ::dup2(output, STDOUT_FILENO);
  ::dup2(errors, STDERR_FILENO);
  std::vector<char*> words{const_cast<char*>("gavrel-cli")};
  for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  const rlimit limit{addressSpace, addressSpace};
  if (addressSpace > 0) ::setrlimit(RLIMIT_AS, &limit);
  ::execv(GAVREL_CLI, words.data());
  ::_exit(127);
}

/// Reads a stream to its end; a terminal whose other end is gone reports an error instead.
std::string readAll(int descriptor) {
  std::string text;
  std::array<char, 4096> buffer{};
  for (ssize_t got = 0; (got = ::read(descriptor, buffer.data(), buffer.size())) > 0;)
    text.append(buffer.data(), static_cast<std::size_t>(got));
  ::close(descriptor);
  return text;
}

}  // namespace

CommandOutcome gavrelCli(const std::vector<std::string>& arguments, const CommandStreams& streams) {
  const auto output = openStream(false);
  const auto errors = openStream(streams.errorsToTerminal);
  const int target = streams.outputPath.empty() ? output[1] : ::open(streams.outputPath.c_str(), O_WRONLY | O_CLOEXEC);
  const pid_t child = ::fork();
  if (child == 0) start(arguments, target, errors[1], streams.addressSpace);
  for (const int descriptor : {output[1], errors[1]}) ::close(descriptor);
  if (!streams.outputPath.empty()) ::close(target);

  CommandOutcome outcome;
  outcome.output = readAll(output[0]);
  outcome.errors = readAll(errors[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  if (WIFEXITED(status)) outcome.status = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) outcome.signal = WTERMSIG(status);
  return outcome;
}

std::string singleBarJson(double loadOnRestraint) {
  Project project("Single bar");
  for (const double x : {0.0, 2.0}) project.addNode({x, 0, 0});
  addBar(project, 0, 1, 2000);
  project.setLoadAndRestraint(0, {}, true, true, true);
  project.setLoadAndRestraint(1, {20, 0, 0}, false, true, true);
  project.F_I.edit()[7] = loadOnRestraint;
  return *encodeProject(project);
}

}  // namespace gavrel
