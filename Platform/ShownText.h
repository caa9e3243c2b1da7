#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace gavrel {

/// A text from outside (a name, a path, what a file holds) for people to read in one line: control characters, line
/// breaks and directional controls, which a terminal obeys, become escapes ("\n", "\x1b", "\u202e"), and so do bytes
/// that are not UTF-8 ("\xff"). Everything else stays, backslashes included. A longer text is cut after the first
/// `longest` characters and ends with "…".
[[nodiscard]] std::string shownText(std::string_view text, std::size_t longest = 200);

/// shownText of at most 60 characters in quotation marks.
[[nodiscard]] std::string shownQuoted(std::string_view text);

/// shownText of the whole path in quotation marks.
[[nodiscard]] std::string shownPath(const std::filesystem::path& path);

}  // namespace gavrel
