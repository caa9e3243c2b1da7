#include "Platform/PrivateFolder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "Platform/FileBytes.h"

namespace gavrel {

namespace fs = std::filesystem;

namespace {

/// The possible paths of the folder inside the shared one, in the order in which they are tried. There are several
/// because another user may have taken a name.
std::vector<fs::path> listCandidates(const fs::path& shared) {
  constexpr int count = 100;
  const fs::path first = shared / ("gavrel-" + std::to_string(::geteuid()));
  std::vector<fs::path> candidates{first};
  for (int i = 1; i < count; ++i) candidates.emplace_back(first.string() + "-" + std::to_string(i));
  return candidates;
}

bool isOfThisUserAlone(const fs::path& folder) {
  struct stat status {};
  return ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
         (status.st_mode & 077) == 0;
}

}  // namespace

Result<fs::path> privateTemporaryFolder() {
  std::error_code missing;
  const auto shared = fs::temp_directory_path(missing);
  if (missing) return Failure{"There is no folder for temporary files: " + missing.message()};
  const auto candidates = listCandidates(shared);
  // Looked for before one is created, so that the folder stays the same when a name that was taken has become free.
  for (const fs::path& folder : candidates)
    if (isOfThisUserAlone(folder)) return folder;
  constexpr mode_t ownerOnly = 0700;
  for (const fs::path& folder : candidates) {
    if (::mkdir(folder.c_str(), ownerOnly) == 0) return folder;
    if (errno != EEXIST) return systemFailure("cannot create", folder, errno);
  }
  return Failure{candidates.front().string() + " and all names like it are taken by others"};
}

}  // namespace gavrel
