#pragma once

#include <QUrl>
#include <filesystem>
#include <optional>

/// The file that an address of the user interface names; none for an empty one.
[[nodiscard]] inline std::optional<std::filesystem::path> pathOf(const QUrl& url) {
  if (url.isEmpty()) return std::nullopt;
  // Qt's own file panel leaves out the scheme.
  return std::filesystem::path((url.isLocalFile() ? url.toLocalFile() : url.path()).toStdString());
}
