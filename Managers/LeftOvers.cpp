#include "Managers/LeftOvers.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>
#include <vector>

#include "Managers/Paths.h"
#include "Platform/FileBytes.h"
#include "Platform/FileDescriptor.h"

namespace gavrel {

namespace fs = std::filesystem;

namespace {

constexpr const char* identifierKey = "CFBundleIdentifier";

/// The lock that an installation holds on the folder of its copy, whatever the folder's name is.
class FolderLock {
 public:
  explicit FolderLock(const fs::path& folder)
      : folder_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)),
        isOurs_(folder_.isOpen() && ::flock(folder_.get(), LOCK_EX | LOCK_NB) == 0) {}

  [[nodiscard]] bool isOurs() const { return isOurs_; }

 private:
  FileDescriptor folder_;
  bool isOurs_;
};

bool isThisUsers(const fs::path& folder) {
  struct stat status {};
  return ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid();
}

/// The file beside a bundle that an installation creates with its copy and removes last. Without it, a folder with a
/// name that installations use was made by somebody else.
fs::path markBeside(const fs::path& bundle) {
  return bundle.string() + ".update";
}

/// Whether the folder holds nothing of value: a copy that was just begun, or a removal that was nearly done.
bool hasNoContent(const fs::path& folder) {
  return std::ranges::all_of(fs::directory_iterator(folder), [](const fs::directory_entry& entry) {
    return entry.path().filename() == "Info.plist" && fs::is_empty(entry);
  });
}

/// Removes the bundle, its Info.plist last, so that the rest of an interrupted removal can still be identified.
std::optional<Failure> removeBundle(const fs::path& folder) {
  std::error_code error;
  for (const fs::path& entry : std::vector<fs::path>(fs::directory_iterator(folder), {}))
    if (!error && entry.filename() != "Info.plist") fs::remove_all(entry, error);
  if (!error) fs::remove_all(folder, error);
  if (!error) return {};
  return systemFailure("an update that was interrupted has left something that cannot be removed,", folder,
                       error.value());
}

std::optional<Failure> removeCopies(const BundleInfo& bundle) {
  const auto identifier = bundle.text(identifierKey);
  const FolderLock whole(*bundle.url);  // an installation keeps its lock until the very end
  if (!identifier || !whole.isOurs()) return {};
  const fs::path mark = markBeside(*bundle.url);
  const bool isMarked = fs::is_regular_file(fs::symlink_status(mark));
  bool isSettled = true;
  for (const char* ending : {".new", ".old"}) {
    const fs::path folder = bundle.url->string() + ending;
    if (!isThere(folder)) continue;
    const FolderLock lock(folder);
    isSettled = isSettled && lock.isOurs();
    if (!lock.isOurs() || !isThisUsers(folder)) continue;
    const bool isOurs = isMarked && BundleInfo::read(folder).text(identifierKey) == identifier;
    if (!isOurs && !hasNoContent(folder)) continue;
    if (auto failure = removeBundle(folder)) return failure;
  }
  if (isMarked && isSettled) fs::remove(mark);
  return {};
}

}  // namespace

std::optional<Failure> removeLeftOvers(const BundleInfo& bundle) try {
  return removeCopies(bundle);
} catch (const fs::filesystem_error& error) {
  return Failure{error.what()};
}

std::optional<Failure> settleInstallation(const fs::path& program) try {
  constexpr std::string_view ending = ".old";
  const BundleInfo renamed = BundleInfo::findAround(program, {}, ending);
  if (!renamed.url) {
    const BundleInfo bundle = BundleInfo::findAround(program);
    return bundle.url ? removeLeftOvers(bundle) : std::nullopt;
  }
  const std::string name = renamed.url->string();
  const fs::path proper = name.substr(0, name.size() - ending.size());
  const fs::path copy = proper.string() + ".new";
  const bool isInstalling = fs::is_directory(copy) && !FolderLock(copy).isOurs();
  if (isThere(proper) || isInstalling || !isThere(markBeside(proper))) return {};
  if (::rename(name.c_str(), proper.c_str()) != 0)
    return systemFailure("an update was interrupted; please rename \"" + name + "\" to", proper, errno);
  return removeLeftOvers(BundleInfo::findAround(proper / renamed.executable));
} catch (const fs::filesystem_error& error) {
  return Failure{error.what()};
}

}  // namespace gavrel
