#include "Platform/AtomicFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

#include "Platform/FileBytes.h"
#include "Platform/FileDescriptor.h"

namespace {

using std::filesystem::path;

constexpr mode_t permissionBits = 07777;
constexpr int longestLinkChain = 40;

/// 0, or the errno value of the write that failed.
int writeAll(int descriptor, std::string_view bytes) {
  constexpr std::size_t largestWrite = std::size_t{1} << 30;
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), std::min(bytes.size(), largestWrite));
    if (written >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

/// The file at the end of a chain of symbolic links; the links' own target even where nothing stands there yet.
path followLinks(path file) {
  std::error_code error;
  for (int hop = 0; hop < longestLinkChain && std::filesystem::is_symlink(file, error); ++hop) {
    const path target = std::filesystem::read_symlink(file, error);
    if (error) break;
    file = file.parent_path() / target;  // an absolute target replaces the folder
  }
  return file;
}

mode_t newFilePermissions() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

std::optional<Failure> writeDirectly(const path& file, std::string_view bytes) {
  FileDescriptor target(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
  if (!target.isOpen()) return systemFailure("cannot open", file, errno);
  if (const int code = writeAll(target.get(), bytes); code != 0) return systemFailure("cannot write", file, code);
  if (!target.close()) return systemFailure("cannot write", file, errno);
  return std::nullopt;
}

/// Gives the open file the permissions and, where allowed, the owner of the one that it replaces.
bool takeOver(int descriptor, const struct stat& old) {
  // Changing the owner clears the set-id bits, so it comes first. That it may be refused is no fault.
  if (::fchown(descriptor, old.st_uid, old.st_gid) != 0 &&
      ::fchown(descriptor, static_cast<uid_t>(-1), old.st_gid) != 0)
    errno = 0;
  return ::fchmod(descriptor, old.st_mode & permissionBits) == 0;
}

/// Fills the open temporary file; 0, or the errno value of what failed.
int fill(FileDescriptor& file, std::string_view bytes, const struct stat* old) {
  if (const int code = writeAll(file.get(), bytes); code != 0) return code;
  if (!(old != nullptr ? takeOver(file.get(), *old) : ::fchmod(file.get(), newFilePermissions()) == 0)) return errno;
  if (::fsync(file.get()) != 0) return errno;
  return file.close() ? 0 : errno;
}

}  // namespace

std::optional<Failure> replaceFile(const path& requested, std::string_view bytes) {
  struct stat old {};
  const bool exists = ::stat(requested.c_str(), &old) == 0;
  if (!exists && errno != ENOENT) return systemFailure("cannot write", requested, errno);
  if (exists && S_ISDIR(old.st_mode)) return systemFailure("cannot write", requested, EISDIR);
  if (exists && !S_ISREG(old.st_mode)) return writeDirectly(requested, bytes);
  if (exists && ::access(requested.c_str(), W_OK) != 0) return systemFailure("cannot write", requested, errno);

  const path target = followLinks(requested);
  const path folder = target.has_parent_path() ? target.parent_path() : path(".");
  std::string beside = (folder / ".gavrel-XXXXXX").string();
  FileDescriptor file(::mkostemp(beside.data(), O_CLOEXEC));
  if (!file.isOpen()) return systemFailure("cannot create a file beside", requested, errno);

  int code = fill(file, bytes, exists ? &old : nullptr);
  if (code == 0 && ::rename(beside.c_str(), target.c_str()) != 0) code = errno;
  if (code != 0) {
    ::unlink(beside.c_str());
    return systemFailure("cannot write", requested, code);
  }
  const FileDescriptor directory(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (directory.isOpen()) ::fsync(directory.get());  // the rename itself; some file systems cannot, the file is whole
  return std::nullopt;
}
