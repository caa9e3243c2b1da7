#pragma once

#include <QString>
#include <filesystem>

namespace gavrel {

/// A path as a text for Qt and for messages.
[[nodiscard]] inline QString toText(const std::filesystem::path& path) {
  return QString::fromStdString(path.string());
}

/// Whether there is anything at the path, even a symbolic link that leads nowhere.
[[nodiscard]] inline bool isThere(const std::filesystem::path& path) {
  return std::filesystem::exists(std::filesystem::symlink_status(path));
}

}  // namespace gavrel
