#include "Platform/AtomicFile.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <string>
#include <utility>

#include "Platform/Destination.h"
#include "Platform/FileBytes.h"
#include "Platform/FileDescriptor.h"
#include "Platform/Signals.h"
#include "Platform/TemporaryFile.h"

namespace gavrel {

namespace {

using std::filesystem::path;

constexpr mode_t permissionBits = 07777;
constexpr mode_t ownerOnly = 0600;  // until the permissions of the old file are taken over
constexpr mode_t anybody = 0666;    // the user's file creation mask is applied to it

using Producer = std::function<void(const ByteSink&)>;

/// 0, or the errno value of the write that failed.
int writeAll(int descriptor, std::string_view bytes) {
  constexpr std::size_t largestWrite = std::size_t{1} << 30;
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), std::min(bytes.size(), largestWrite));
    if (written >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EAGAIN) {  // a stream that another process has made non-blocking
      pollfd ready{descriptor, POLLOUT, 0};
      ::poll(&ready, 1, -1);
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

/// 0, or the errno value of the first write that failed.
int writeAll(int descriptor, const Producer& produce) {
  constexpr std::uint64_t step = std::uint64_t{16} << 20;
  int code = 0;
  std::uint64_t written = 0;
  produce([&](std::string_view piece) {
    if (code != 0) return;
    code = writeAll(descriptor, piece);
    const std::uint64_t before = std::exchange(written, written + piece.size());
    // The disk begins while the rest is made, so that the flush at the end is short.
    if (before / step != written / step) ::sync_file_range(descriptor, 0, 0, SYNC_FILE_RANGE_WRITE);
  });
  return code;
}

/// Whether a file that cannot be replaced for this reason may still be overwritten: its folder is read-only, it belongs
/// to somebody else in a folder like /tmp, or it is a mount point.
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

/// Overwrites a file. Room is reserved before the first byte is written, so that a full disk leaves the file as it was.
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
  const Uninterrupted writing;
  return overwrite(file, std::string_view(whole));
}

std::optional<Failure> writeToStream(const path& file, const Producer& produce) {
  FileDescriptor stream = openStream(file);
  if (!stream.isOpen()) return systemFailure("cannot open", file, errno);
  if (const int code = writeAll(stream.get(), produce); code != 0) return systemFailure("cannot write", file, code);
  if (!stream.close()) return systemFailure("cannot write", file, errno);
  return std::nullopt;
}

/// Gives the open file the permissions and, where allowed, the owner of the one that it replaces.
bool takeOver(int descriptor, const struct stat& old) {
  // Changing the owner clears the set-id bits, so it comes first. A refusal is ignored.
  if (::fchown(descriptor, old.st_uid, old.st_gid) != 0 &&
      ::fchown(descriptor, static_cast<uid_t>(-1), old.st_gid) != 0)
    errno = 0;
  return ::fchmod(descriptor, old.st_mode & permissionBits) == 0;
}

/// Fills the open temporary file; 0, or the errno value of what failed.
int fill(int file, const Producer& produce, const struct stat* old) {
  if (const int code = writeAll(file, produce); code != 0) return code;
  if (old != nullptr && !takeOver(file, *old)) return errno;
  return ::fsync(file) == 0 ? 0 : errno;
}

/// Writes a file beside `target` and moves it there. `old`: the status of the file there; null if there is none.
std::optional<Failure> replace(const path& requested, const path& target, const struct stat* old,
                               const Producer& produce) {
  using Kind = TemporaryFile::Kind;
  int code = 0;
  const char* attempt = "cannot create a file beside";
  for (const Kind kind : {Kind::unnamed, Kind::named}) {
    TemporaryFile beside(parentFolder(target), old != nullptr ? ownerOnly : anybody, kind);
    if (!beside.file.isOpen()) {
      code = errno;
      continue;
    }
    if ((code = fill(beside.file.get(), produce, old)) != 0) return systemFailure("cannot write", requested, code);
    if ((code = beside.moveTo(target, old != nullptr)) == 0) return std::nullopt;
    attempt = "cannot write";
    if (beside.hasName()) break;  // otherwise it could not be given one
  }
  if (old != nullptr && leavesTheFileWritable(code)) return overwrite(requested, produce);
  return systemFailure(attempt, requested, code);
}

}  // namespace

std::optional<Failure> whyNotReplaceable(const path& requested) {
  const auto refuse = [&](int code) { return systemFailure("cannot write", requested, code); };
  if (const auto own = ownDescriptor(requested)) {
    const int flags = ::fcntl(*own, F_GETFL);
    if (flags < 0 || (flags & O_ACCMODE) == O_RDONLY) return refuse(EBADF);
    return std::nullopt;
  }
  struct stat old {};
  const bool exists = ::stat(requested.c_str(), &old) == 0;
  const int missing = exists ? 0 : errno;
  if (!exists && (missing != ENOENT || isDescriptor(followLinks(requested)))) return refuse(missing);
  if (exists && S_ISDIR(old.st_mode)) return refuse(EISDIR);
  if (exists && ::access(requested.c_str(), W_OK) != 0) return refuse(errno);
  if (!exists && ::access(parentFolder(followLinks(requested)).c_str(), W_OK | X_OK) != 0)
    return systemFailure("cannot create a file beside", requested, errno);
  return std::nullopt;
}

std::optional<Failure> replaceFile(const path& requested, std::string_view bytes) {
  return replaceFile(requested, [bytes](const ByteSink& sink) { sink(bytes); });
}

std::optional<Failure> replaceFile(const path& requested, const Producer& produce) {
  if (auto refused = whyNotReplaceable(requested)) return refused;
  if (isStream(requested)) return writeToStream(requested, produce);
  struct stat old {};
  const bool exists = ::stat(requested.c_str(), &old) == 0;
  const path target = followLinks(requested);
  if (auto failure = replace(requested, target, exists ? &old : nullptr, produce)) return failure;
  const FileDescriptor directory(::open(parentFolder(target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (directory.isOpen()) ::fsync(directory.get());  // the new name itself; some file systems cannot, the file is whole
  return std::nullopt;
}

}  // namespace gavrel
