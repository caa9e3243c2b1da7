#include "Platform/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>

std::optional<FileLock> FileLock::take(const std::filesystem::path& path) {
  FileDescriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  if (!file.isOpen() || ::flock(file.get(), LOCK_EX | LOCK_NB) != 0) return std::nullopt;
  return FileLock(std::move(file));
}
