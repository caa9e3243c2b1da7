#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace gavrel {

/// Which file was at a path, and in which state: a file that anybody has written to or replaced has another stamp.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t number = 0;  ///< inode
  std::int64_t size = 0;     ///< bytes
  std::int64_t changed = 0;  ///< last change of the content, nanoseconds since 1970

  /// The stamp of the regular file at the path, symbolic links followed; none where there is no such file.
  [[nodiscard]] static std::optional<FileStamp> read(const std::filesystem::path& path);

  bool operator==(const FileStamp&) const = default;
};

}  // namespace gavrel
