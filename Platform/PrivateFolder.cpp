#include "Platform/PrivateFolder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "Platform/FileBytes.h"

Result<std::filesystem::path> privateTemporaryFolder() {
  std::error_code missing;
  const auto shared = std::filesystem::temp_directory_path(missing);
  if (missing) return Failure{"There is no folder for temporary files: " + missing.message()};
  const auto folder = shared / ("gavrel-" + std::to_string(::geteuid()));
  constexpr mode_t ownerOnly = 0700;
  if (::mkdir(folder.c_str(), ownerOnly) != 0 && errno != EEXIST) return systemFailure("cannot create", folder, errno);
  struct stat status {};
  if (::lstat(folder.c_str(), &status) != 0) return systemFailure("cannot inspect", folder, errno);
  if (!S_ISDIR(status.st_mode) || status.st_uid != ::geteuid() || (status.st_mode & 077) != 0)
    return Failure{folder.string() + " is not a folder of this user alone"};
  return folder;
}
