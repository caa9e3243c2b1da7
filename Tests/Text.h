#pragma once

#include <algorithm>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace gavrel {

/// The parts of the text between blanks, so that a list of many short ones can be written as one.
[[nodiscard]] inline std::vector<std::string> words(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

/// The text without blanks and line ends, to compare JSON by.
[[nodiscard]] inline std::string withoutSpace(std::string text) {
  std::erase_if(text, [](char c) { return c == ' ' || c == '\n'; });
  return text;
}

}  // namespace gavrel
