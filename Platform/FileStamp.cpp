#include "Platform/FileStamp.h"

#include <sys/stat.h>

namespace gavrel {

std::optional<FileStamp> FileStamp::read(const std::filesystem::path& path) {
  constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return FileStamp{status.st_dev, status.st_ino, status.st_size,
                   status.st_mtim.tv_sec * nanosecondsPerSecond + status.st_mtim.tv_nsec};
}

}  // namespace gavrel
