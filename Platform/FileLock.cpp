#include "Platform/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <sstream>
#include <string>

#include "Platform/FileBytes.h"

namespace gavrel {

namespace {

std::string readFirstLine(const char* file) {
  const auto text = readFile(file);
  return text ? text->substr(0, text->find('\n')) : std::string("unknown");
}

/// When a process was started, in clock ticks since the machine started; none if the process has ended.
std::optional<std::string> readProcessStart(const std::string& process) {
  const auto status = readFile("/proc/" + process + "/stat");
  if (!status) return std::nullopt;
  // The name comes second, in parentheses, and may itself hold any characters; the state is the word after it.
  std::istringstream rest(status->substr(status->rfind(')') + 1));
  constexpr int wordsBetween = 18;  // from the state to the start
  std::string state;
  std::string word;
  rest >> state;
  for (int i = 0; i <= wordsBetween; ++i) rest >> word;
  if (state == "Z" || state == "X") return std::nullopt;  // dead, but not yet waited for
  return word;
}

/// The owner of a lock as its file names it: the machine and when it was started, the process and when it was started.
struct Owner {
  std::string machine;
  std::string machineStart;
  std::string process;
  std::string processStart;

  [[nodiscard]] static Owner thisProcess() {
    const std::string process = std::to_string(::getpid());
    return {readFirstLine("/etc/machine-id"), readFirstLine("/proc/sys/kernel/random/boot_id"), process,
            readProcessStart(process).value_or("unknown")};
  }

  /// Whether the process may still run.
  [[nodiscard]] bool lives() const {
    const Owner self = thisProcess();
    if (machine != self.machine) return true;
    return machineStart == self.machineStart && readProcessStart(process) == processStart;
  }
};

std::optional<Owner> readOwner(const std::filesystem::path& file) {
  const auto text = readFile(file);
  if (!text) return std::nullopt;
  std::istringstream words(*text);
  Owner owner;
  words >> owner.machine >> owner.machineStart >> owner.process >> owner.processStart;
  return words ? std::optional(owner) : std::nullopt;
}

bool writeOwner(int file) {
  const Owner self = Owner::thisProcess();
  const std::string line = self.machine + " " + self.machineStart + " " + self.process + " " + self.processStart + "\n";
  return ::ftruncate(file, 0) == 0 && ::pwrite(file, line.data(), line.size(), 0) == std::ssize(line);
}

}  // namespace

std::optional<FileLock> FileLock::take(const std::filesystem::path& path) {
  FileDescriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  if (!file.isOpen())
    file = FileDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));  // for example on a read-only disk
  if (!file.isOpen()) return std::nullopt;
  if (::flock(file.get(), LOCK_EX | LOCK_NB) == 0) return FileLock(std::move(file), false);
  if (errno == EWOULDBLOCK) return std::nullopt;
  const auto owner = readOwner(path);
  if ((owner && owner->lives()) || !writeOwner(file.get())) return std::nullopt;
  return FileLock(std::move(file), true);
}

FileLock::~FileLock() {
  if (isNamed_ && file_.isOpen() && ::ftruncate(file_.get(), 0) != 0) errno = 0;  // it is free when the process ends
}

}  // namespace gavrel
