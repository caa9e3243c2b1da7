#pragma once

#include <QUrl>
#include <filesystem>
#include <optional>

/// The file that an address of the user interface names; none for an empty one and for one that is elsewhere.
[[nodiscard]] inline std::optional<std::filesystem::path> toPath(const QUrl& url) {
  const QString file = url.toLocalFile();
  return file.isEmpty() ? std::nullopt : std::optional<std::filesystem::path>(file.toStdString());
}
