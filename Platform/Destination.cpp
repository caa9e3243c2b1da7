#include "Platform/Destination.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>

#include <charconv>
#include <cstdio>
#include <string>
#include <system_error>

namespace gavrel {

using std::filesystem::path;

path followLinks(path file) {
  constexpr int longestChain = 40;
  std::error_code error;
  for (int hop = 0; hop < longestChain && std::filesystem::is_symlink(file, error) && !isDescriptor(file); ++hop) {
    const path target = std::filesystem::read_symlink(file, error);
    if (error) break;
    file = file.parent_path() / target;  // an absolute target replaces the folder
  }
  return file;
}

path parentFolder(const path& file) {
  return file.has_parent_path() ? file.parent_path() : path(".");
}

bool isDescriptor(const path& followed) {
  std::error_code error;
  struct statfs system {};
  return ::statfs(parentFolder(followed).c_str(), &system) == 0 && system.f_type == PROC_SUPER_MAGIC &&
         std::filesystem::canonical(parentFolder(followed), error).filename() == "fd";
}

std::optional<int> ownDescriptor(const path& file) {
  const path followed = followLinks(file);
  if (!isDescriptor(followed)) return std::nullopt;
  std::error_code error;
  const path folder = std::filesystem::canonical(parentFolder(followed), error);
  const bool isOwn = folder == std::filesystem::canonical("/proc/self/fd", error) ||
                     folder == std::filesystem::canonical("/proc/thread-self/fd", error);
  const std::string name = followed.filename();
  int number = -1;
  const auto end = name.data() + name.size();
  if (!isOwn || std::from_chars(name.data(), end, number).ptr != end) return std::nullopt;
  return number;
}

bool isStream(const path& file) {
  struct stat status {};
  const bool exists = ::stat(file.c_str(), &status) == 0;
  return (exists && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) || isDescriptor(followLinks(file));
}

FileDescriptor openStream(const path& file) {
  if (const auto own = ownDescriptor(file)) {
    std::fflush(stdout);  // so that what was printed before comes first
    return FileDescriptor(::fcntl(*own, F_DUPFD_CLOEXEC, 0));
  }
  return FileDescriptor(::open(file.c_str(), O_WRONLY | O_APPEND | O_NOCTTY | O_CLOEXEC));
}

}  // namespace gavrel
