#pragma once

#include <filesystem>
#include <optional>

#include "Platform/FileDescriptor.h"

namespace gavrel {

/// A lock on a file, which is created if there is none. It is released when its owner is destroyed, also when the
/// process is killed. The file stays.
///
/// On a file system without locks the file names the process that has it, and counts as free once that process has
/// ended. A file that names a process of another machine never counts as free there.
class FileLock {
 public:
  /// The lock, unless somebody else has it or the file cannot be opened.
  [[nodiscard]] static std::optional<FileLock> take(const std::filesystem::path& file);

  FileLock(FileLock&&) = default;
  FileLock& operator=(FileLock&&) = default;
  ~FileLock();

 private:
  explicit FileLock(FileDescriptor file, bool isNamed) : file_(std::move(file)), isNamed_(isNamed) {}

  FileDescriptor file_;
  bool isNamed_;  // by the content of the file, not by the system
};

}  // namespace gavrel
