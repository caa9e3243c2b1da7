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
constexpr mode_t ownerOnly = 0600;  // until the permissions of the old file are taken over
constexpr mode_t anybody = 0666;    // less what the user's file creation mask takes away
constexpr int longestLinkChain = 40;

using Producer = std::function<void(const ByteSink&)>;

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

/// Creates an empty file of a name that nothing in the folder has, and stores its path in `created`.
FileDescriptor createIn(const path& folder, mode_t permissions, path& created) {
  constexpr int attempts = 1000;  // names are taken only where an earlier process of the same number died in a save
  int descriptor = -1;
  for (int i = 0; i < attempts && descriptor < 0 && (i == 0 || errno == EEXIST); ++i) {
    created = folder / (".gavrel-" + std::to_string(::getpid()) + "-" + std::to_string(i));
    descriptor = ::open(created.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, permissions);
  }
  return FileDescriptor(descriptor);
}

/// 0, or the errno value of the first write that failed.
int writeAll(int descriptor, const Producer& produce) {
  int code = 0;
  produce([&](std::string_view piece) {
    if (code == 0) code = writeAll(descriptor, piece);
  });
  return code;
}

/// Whether a file may still be written itself where nothing can be put in its place for this reason: its folder may not
/// be changed, it is somebody else's in a folder like /tmp, or it is mounted there on its own.
bool leavesTheFileWritable(int code) {
  return code == EACCES || code == EPERM || code == EROFS || code == EBUSY;
}

/// Room on the disk for `size` bytes of an open file of `oldSize`; 0, or the errno value where there is none.
int reserve(int descriptor, off_t size, off_t oldSize) {
  if (size == 0 || ::fallocate(descriptor, 0, 0, size) == 0) return 0;
  const int code = errno;
  if (code == EOPNOTSUPP || code == ENOSYS || code == EINVAL) return 0;  // the file system cannot tell
  return ::ftruncate(descriptor, oldSize) == 0 ? code : errno;
}

/// Writes over the content of a file. Room is made before the first byte goes, so that a full disk leaves it as it was.
std::optional<Failure> overwrite(const path& file, std::string_view bytes) {
  const auto fail = [&](int code) { return systemFailure("cannot write", file, code); };
  FileDescriptor target(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
  struct stat old {};
  if (!target.isOpen() || ::fstat(target.get(), &old) != 0) return fail(errno);
  const auto size = static_cast<off_t>(bytes.size());
  if (const int code = reserve(target.get(), size, old.st_size); code != 0) return fail(code);
  if (const int code = writeAll(target.get(), bytes); code != 0) return fail(code);
  if (::ftruncate(target.get(), size) != 0 || ::fsync(target.get()) != 0 || !target.close()) return fail(errno);
  return std::nullopt;
}

std::optional<Failure> overwrite(const path& file, const Producer& produce) {
  std::string whole;
  produce([&whole](std::string_view piece) { whole += piece; });
  return overwrite(file, std::string_view(whole));
}

std::optional<Failure> writeDirectly(const path& file, const Producer& produce) {
  FileDescriptor target(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
  if (!target.isOpen()) return systemFailure("cannot open", file, errno);
  if (const int code = writeAll(target.get(), produce); code != 0) return systemFailure("cannot write", file, code);
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
int fill(FileDescriptor& file, const Producer& produce, const struct stat* old) {
  if (const int code = writeAll(file.get(), produce); code != 0) return code;
  if (old != nullptr && !takeOver(file.get(), *old)) return errno;
  if (::fsync(file.get()) != 0) return errno;
  return file.close() ? 0 : errno;
}

path folderOf(const path& file) {
  return file.has_parent_path() ? file.parent_path() : path(".");
}

bool isOther(const struct stat& status) {
  return !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

}  // namespace

std::optional<Failure> whyNotReplaceable(const path& requested) {
  struct stat old {};
  const bool exists = ::stat(requested.c_str(), &old) == 0;
  if (!exists && errno != ENOENT) return systemFailure("cannot write", requested, errno);
  if (exists && S_ISDIR(old.st_mode)) return systemFailure("cannot write", requested, EISDIR);
  if (exists && ::access(requested.c_str(), W_OK) != 0) return systemFailure("cannot write", requested, errno);
  if (!exists && ::access(folderOf(followLinks(requested)).c_str(), W_OK | X_OK) != 0)
    return systemFailure("cannot create a file beside", requested, errno);
  return std::nullopt;
}

std::optional<Failure> replaceFile(const path& requested, std::string_view bytes) {
  return replaceFile(requested, [bytes](const ByteSink& sink) { sink(bytes); });
}

std::optional<Failure> replaceFile(const path& requested, const Producer& produce) {
  if (auto refused = whyNotReplaceable(requested)) return refused;
  struct stat old {};
  const bool exists = ::stat(requested.c_str(), &old) == 0;
  if (exists && isOther(old)) return writeDirectly(requested, produce);

  const path target = followLinks(requested);
  const path folder = folderOf(target);
  path beside;
  FileDescriptor file = createIn(folder, exists ? ownerOnly : anybody, beside);
  if (!file.isOpen() && exists && leavesTheFileWritable(errno)) return overwrite(requested, produce);
  if (!file.isOpen()) return systemFailure("cannot create a file beside", requested, errno);

  int code = fill(file, produce, exists ? &old : nullptr);
  if (code == 0 && ::rename(beside.c_str(), target.c_str()) != 0) {
    code = errno;
    if (exists && leavesTheFileWritable(code)) {
      const auto whole = readFile(beside);
      ::unlink(beside.c_str());
      return whole ? overwrite(requested, std::string_view(*whole)) : whole.failure();
    }
  }
  if (code != 0) {
    ::unlink(beside.c_str());
    return systemFailure("cannot write", requested, code);
  }
  const FileDescriptor directory(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (directory.isOpen()) ::fsync(directory.get());  // the rename itself; some file systems cannot, the file is whole
  return std::nullopt;
}
