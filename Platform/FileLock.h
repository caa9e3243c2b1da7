#pragma once

#include <filesystem>
#include <optional>

#include "Platform/FileDescriptor.h"

namespace gavrel {

/// A lock on a file, which is made if it is not there. It is free again when its owner goes, also when the process is
/// killed. The file stays.
///
/// On a file system without locks the file names the process that has it, and counts as free once that process is gone.
/// What a process of another machine has named its own is never free there.
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
