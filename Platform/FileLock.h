#pragma once

#include <filesystem>
#include <optional>

#include "Platform/FileDescriptor.h"

/// A lock on a file, which is made if it is not there. It is free again when its owner goes, also when the process is
/// killed. The file stays.
class FileLock {
 public:
  /// The lock, unless somebody else has it or the file cannot be opened.
  [[nodiscard]] static std::optional<FileLock> take(const std::filesystem::path& file);

 private:
  explicit FileLock(FileDescriptor file) : file_(std::move(file)) {}

  FileDescriptor file_;
};
