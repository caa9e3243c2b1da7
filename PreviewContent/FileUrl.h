#pragma once

#include <QUrl>
#include <filesystem>
#include <optional>

namespace gavrel {

/// The local file that a URL names; none for an empty URL and for one that is not a local file.
[[nodiscard]] inline std::optional<std::filesystem::path> toPath(const QUrl& url) {
  const QString file = url.toLocalFile();
  return file.isEmpty() ? std::nullopt : std::optional<std::filesystem::path>(file.toStdString());
}

}  // namespace gavrel
