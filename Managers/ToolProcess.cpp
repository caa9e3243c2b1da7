#include "Managers/ToolProcess.h"

#include <spawn.h>
#include <unistd.h>

#include <QProcessEnvironment>
#include <array>
#include <csignal>
#include <cstring>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace gavrel {

namespace {

using Variable = std::pair<const char*, const char*>;

/// The environment of the tools: names of files are UTF-8, and messages are English.
constexpr std::array toolVariables{Variable{"PATH", "/usr/bin:/bin"}, Variable{"LC_ALL", "C.UTF-8"}};

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

void isolate(QProcess& process, std::function<void()> limit) {
  QProcessEnvironment environment;
  for (const auto& [name, value] : toolVariables) environment.insert(name, value);
  process.setProcessEnvironment(environment);
  process.setStandardInputFile(QProcess::nullDevice());
  process.setChildProcessModifier([limit = std::move(limit)] {
    ::setsid();
    if (limit) limit();
  });
}

std::optional<Failure> startScript(const std::filesystem::path& script) {
  std::vector<std::string> environment;
  environment.reserve(toolVariables.size());
  for (const auto& [name, value] : toolVariables) environment.push_back(std::string(name) + "=" + value);
  // Not QProcess: that would change values that are no UTF-8.
  for (char** own = ::environ; *own != nullptr; ++own)
    if (std::strchr(*own, '=') != nullptr)  // anything else would be taken for the program
      environment.push_back("GAVREL_OWN_" + std::to_string(environment.size()) + "=" + *own);
  std::vector<std::string> arguments{"/bin/bash", script.string()};

  posix_spawnattr_t attributes;
  ::posix_spawnattr_init(&attributes);
  sigset_t pipe;
  ::sigemptyset(&pipe);
  ::sigaddset(&pipe, SIGPIPE);  // this process ignores it
  ::posix_spawnattr_setsigdefault(&attributes, &pipe);
  ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF);
  pid_t process = 0;
  const int error = ::posix_spawn(&process, arguments.front().c_str(), nullptr, &attributes,
                                  pointersTo(arguments).data(), pointersTo(environment).data());
  ::posix_spawnattr_destroy(&attributes);
  if (error == 0) return {};
  return Failure{arguments.front() + ": " + std::generic_category().message(error)};
}

}  // namespace gavrel
