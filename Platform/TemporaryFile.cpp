#include "Platform/TemporaryFile.h"

#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <sys/stat.h>
#include <time.h>

#include <cerrno>
#include <charconv>
#include <string>
#include <system_error>

namespace gavrel {

namespace {

using std::filesystem::path;

constexpr std::string_view prefix = ".gavrel-";

/// Whether `name` is that of a temporary file whose process has ended or was started after the file.
bool isLeftOver(const std::string& name, const struct stat& status) {
  constexpr time_t longestPause = 600;  // between two writes, in seconds, with room for clocks that differ
  timespec now{};
  timespec running{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  ::clock_gettime(CLOCK_BOOTTIME, &running);
  pid_t process = 0;
  const char* const end = name.data() + name.size();
  if (!name.starts_with(prefix)) return false;
  const auto [stop, error] = std::from_chars(name.data() + prefix.size(), end, process);
  if (error != std::errc() || stop == end || *stop != '-' || process <= 0) return false;
  const bool isGone = ::kill(process, 0) != 0 && errno == ESRCH;
  const bool isOlderThanTheStart = status.st_mtim.tv_sec < now.tv_sec - running.tv_sec;
  return S_ISREG(status.st_mode) && status.st_uid == ::geteuid() && (isGone || isOlderThanTheStart) &&
         status.st_mtim.tv_sec < now.tv_sec - longestPause;
}

}  // namespace

template <class Make>
bool TemporaryFile::takeName(Make&& make) {
  constexpr int attempts = 1000;  // names are taken only where an earlier process of the same number was killed
  for (int i = 0; i < attempts; ++i) {
    name_ = folder_ / (std::string(prefix) + std::to_string(::getpid()) + "-" + std::to_string(i));
    if (make()) return true;
    if (errno != EEXIST) break;
  }
  name_.clear();
  return false;
}

TemporaryFile::TemporaryFile(const path& folder, mode_t permissions, Kind kind) : folder_(folder) {
  if (kind == Kind::unnamed) {
    file = FileDescriptor(::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, permissions));
    return;
  }
  takeName([&] {
    removal_.emplace(name_);
    file = FileDescriptor(::open(name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, permissions));
    return file.isOpen();
  });
}

TemporaryFile::~TemporaryFile() {
  if (!name_.empty()) ::unlink(name_.c_str());
}

int TemporaryFile::moveTo(const path& target, bool replaces) {
  const auto link = [this](const path& to) {
    return ::linkat(AT_FDCWD, descriptorPath(file.get()).c_str(), AT_FDCWD, to.c_str(), AT_SYMLINK_FOLLOW) == 0;
  };
  const Uninterrupted moment;
  if (name_.empty()) {
    if (!replaces && link(target)) return 0;
    // A file cannot take another's place without a name of its own.
    if (!takeName([&] { return link(name_); })) return errno;
  }
  if (!file.close() || ::rename(name_.c_str(), target.c_str()) != 0) return errno;
  name_.clear();
  return 0;
}

void sweepTemporaryFiles(const path& folder) {
  std::error_code unreadable;
  for (const auto& entry : std::filesystem::directory_iterator(folder, unreadable)) {
    struct stat status {};
    if (::lstat(entry.path().c_str(), &status) == 0 && isLeftOver(entry.path().filename(), status))
      ::unlink(entry.path().c_str());
  }
}

}  // namespace gavrel
