#pragma once

#include <QUrl>
#include <filesystem>
#include <optional>

/// The file that an address of the user interface names; none for an empty one.
[[nodiscard]] inline std::optional<std::filesystem::path> pathOf(const QUrl& url) {
  if (url.isEmpty()) return std::nullopt;
  return std::filesystem::path(url.toLocalFile().toStdString());
}
