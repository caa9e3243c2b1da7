#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

namespace gavrel {

/// The lines of a text, one after the other, as views of that text.
class Lines {
 public:
  /// `before`: number of lines before the text in its file.
  explicit Lines(std::string_view text, std::size_t before = 0) : rest_(text), number_(before) {}

  /// The next line without its line feed; nothing after the last one.
  [[nodiscard]] std::optional<std::string_view> next() {
    if (rest_.empty()) return std::nullopt;
    const std::string_view line = rest_.substr(0, rest_.find('\n'));
    rest_.remove_prefix(std::min(line.size() + 1, rest_.size()));
    ++number_;
    return line;
  }

  /// The number of the line that `next` returned last.
  [[nodiscard]] std::size_t number() const { return number_; }
  /// The text after that line.
  [[nodiscard]] std::string_view rest() const { return rest_; }

 private:
  std::string_view rest_;
  std::size_t number_;
};

/// Whether this is white space of ASCII, whatever the user's locale.
[[nodiscard]] inline bool isSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

/// The text without the white space at its ends.
[[nodiscard]] inline std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

/// The text with the letters A to Z in lower case.
[[nodiscard]] inline std::string lower(std::string_view text) {
  std::string result(text);
  for (char& c : result)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return result;
}

}  // namespace gavrel
