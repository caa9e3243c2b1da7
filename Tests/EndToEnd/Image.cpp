#include "Tests/EndToEnd/Image.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace gavrel {

Image Image::from(const std::string& command) {
  FILE* pipe = ::popen(command.c_str(), "r");
  Image image;
  if (pipe == nullptr || std::fscanf(pipe, "P6 %d %d 255", &image.width, &image.height) != 2)
    throw std::runtime_error("no picture from " + command);
  std::fgetc(pipe);
  image.pixels.resize(std::size_t(image.width) * std::size_t(image.height));
  const auto read = std::fread(image.pixels.data(), sizeof(Pixel), image.pixels.size(), pipe);
  if (::pclose(pipe) != 0 || read != image.pixels.size()) throw std::runtime_error("half a picture from " + command);
  return image;
}

std::vector<Image::Point> Image::buttonRow(std::size_t count) const {
  constexpr int narrowest = 30;  // pixels
  constexpr int aboveLowerEdge = 12;
  for (int y = height - 1; y >= aboveLowerEdge; --y) {
    std::vector<Point> middles;
    for (int x = 0; x < width;) {
      int end = x + 1;
      while (end < width && at(end, y) == at(x, y)) ++end;
      // A lower edge stands out from what is right below it.
      if (end - x >= narrowest && y + 3 < height && at(x, y) != at(x, y + 3) && at(x, y) != at(0, y))
        middles.push_back({(x + end) / 2, y - aboveLowerEdge});
      x = end;
    }
    if (middles.size() == count) return middles;
  }
  return {};
}

std::vector<Image::Point> Image::balls() const {
  constexpr int smallest = 30;  // pixels
  const auto isBall = [](const Pixel& p) {
    return p.red < 40 && p.blue > 75 && (p.green < 40 || std::abs(p.green - p.blue) < 12);
  };
  const auto buttons = buttonRow(10);
  const int top = 60;
  const int bottom = buttons.empty() ? height : buttons.front().y - 20;
  std::vector<bool> seen(pixels.size());
  std::vector<Point> middles;
  for (int startY = top; startY < bottom; ++startY) {
    for (int startX = 0; startX < width; ++startX) {
      std::vector<Point> patch{{startX, startY}};
      std::vector<Point> todo = patch;
      patch.clear();
      while (!todo.empty()) {
        const auto [x, y] = todo.back();
        todo.pop_back();
        if (x < 0 || x >= width || y < top || y >= bottom) continue;
        const std::size_t index = std::size_t(y) * std::size_t(width) + std::size_t(x);
        if (seen[index] || !isBall(pixels[index])) continue;
        seen[index] = true;
        patch.push_back({x, y});
        todo.insert(todo.end(), {{x + 1, y}, {x - 1, y}, {x, y + 1}, {x, y - 1}});
      }
      if (patch.size() < smallest) continue;
      Point sum{0, 0};
      for (const Point& p : patch) sum = {sum.x + p.x, sum.y + p.y};
      middles.push_back({sum.x / int(patch.size()), sum.y / int(patch.size())});
    }
  }
  std::ranges::sort(middles, {}, &Point::x);
  return middles;
}

}  // namespace gavrel
