#pragma once

#include <CLI/CLI.hpp>
#include <charconv>
#include <optional>
#include <string>

#include "Platform/ShownText.h"

namespace gavrel {

inline constexpr int largestPicture = 16384;  // pixels a side, what every graphics driver takes

/// Of a picture, in pixels.
struct PictureSize {
  int width = 1600;
  int height = 1000;
};

/// Reads "1600x1000"; nothing if the text is no such size or a side is not from 1 to largestPicture.
[[nodiscard]] inline std::optional<PictureSize> readPictureSize(const std::string& text) {
  const char* at = text.data();
  const char* const end = at + text.size();
  const auto readSide = [&at, end](int& side) {
    const auto [stop, error] = std::from_chars(at, end, side);
    at = stop;
    return error == std::errc() && side >= 1 && side <= largestPicture;
  };
  PictureSize size;
  const bool isSize = readSide(size.width) && at != end && *at++ == 'x' && readSide(size.height) && at == end;
  return isSize ? std::optional(size) : std::nullopt;
}

/// To be given to the `check` of an option that takes a size of a picture.
[[nodiscard]] inline CLI::Validator pictureSize() {
  return {[](const std::string& text) -> std::string {
            if (readPictureSize(text)) return "";
            return "a size is WIDTHxHEIGHT in pixels, each from 1 to " + std::to_string(largestPicture) + ", not " +
                   shownQuoted(text);
          },
          ""};
}

}  // namespace gavrel
