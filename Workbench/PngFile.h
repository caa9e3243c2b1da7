#pragma once

#include <QBuffer>
#include <QImage>
#include <optional>
#include <string>

namespace gavrel {

/// The content of a PNG file with this picture; none if the picture is too large for one.
[[nodiscard]] inline std::optional<std::string> encodePng(const QImage& picture) {
  QBuffer buffer;
  if (!buffer.open(QIODevice::WriteOnly) || !picture.save(&buffer, "PNG")) return std::nullopt;
  return buffer.data().toStdString();
}

}  // namespace gavrel
