#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace gavrel {

/// A picture of the screen, as far as a test needs to understand one.
struct Image {
  struct Pixel {
    std::uint8_t red, green, blue;

    bool operator==(const Pixel&) const = default;
  };
  struct Point {
    int x, y;
  };

  /// What a command writes to its standard output as a portable pixmap.
  static Image from(const std::string& command);

  int width = 0;
  int height = 0;
  std::vector<Pixel> pixels;

  /// What the screen shows now.
  static Image ofScreen() { return from("import -silent -window root -depth 8 ppm:-"); }
  static Image ofFile(const std::string& path) { return from("convert " + path + " -depth 8 ppm:-"); }

  [[nodiscard]] const Pixel& at(int x, int y) const {
    return pixels[std::size_t(y) * std::size_t(width) + std::size_t(x)];
  }

  /// Middles of the buttons in the lowest row that has `count` boxes side by side, from left to right.
  [[nodiscard]] std::vector<Point> buttonRow(std::size_t count) const;

  /// Middles of the nodes' balls, blue or cyan, from left to right.
  [[nodiscard]] std::vector<Point> balls() const;
};

}  // namespace gavrel
