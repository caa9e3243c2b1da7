#include "Platform/ShownText.h"

#include <simdjson.h>

#include <array>
#include <bit>
#include <cstdint>
#include <cstdio>

namespace gavrel {

namespace {

/// How many bytes the UTF-8 character at the beginning of the text has; 0 if there is no valid one.
std::size_t sizeOfFirst(std::string_view text) {
  const auto ones = static_cast<std::size_t>(std::countl_one(static_cast<unsigned char>(text.front())));
  const std::size_t size = ones == 0 ? 1 : ones;
  return size <= text.size() && simdjson::validate_utf8(text.data(), size) ? size : 0;
}

std::uint32_t decodeCharacter(std::string_view character) {
  const auto first = static_cast<unsigned char>(character.front());
  if (character.size() == 1) return first;
  std::uint32_t code = first & (0x7Fu >> character.size());
  for (const char c : character.substr(1)) code = code << 6 | (static_cast<unsigned char>(c) & 0x3Fu);
  return code;
}

bool isObeyed(std::uint32_t code) {
  const auto within = [code](std::uint32_t first, std::uint32_t last) { return code >= first && code <= last; };
  return code < 0x20 || within(0x7F, 0x9F) || code == 0x061C || within(0x200E, 0x200F) || within(0x2028, 0x202E) ||
         within(0x2066, 0x2069);
}

std::string escaped(std::uint32_t code) {
  if (code == '\n') return "\\n";
  if (code == '\t') return "\\t";
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), code < 0x80 ? "\\x%02x" : "\\u%04x", code);
  return text.data();
}

}  // namespace

std::string shownText(std::string_view text, std::size_t longest) {
  std::string shown;
  for (std::size_t count = 0; !text.empty(); ++count) {
    if (count == longest) return shown + "…";
    const std::size_t size = sizeOfFirst(text);
    if (size == 0) {
      std::array<char, 8> byte{};
      std::snprintf(byte.data(), byte.size(), "\\x%02x", static_cast<unsigned char>(text.front()));
      shown += byte.data();
    } else {
      const std::string_view character = text.substr(0, size);
      const std::uint32_t code = decodeCharacter(character);
      shown += isObeyed(code) ? escaped(code) : std::string(character);
    }
    text.remove_prefix(size == 0 ? 1 : size);
  }
  return shown;
}

std::string shownQuoted(std::string_view text) {
  constexpr std::size_t longest = 60;
  return '"' + shownText(text, longest) + '"';
}

std::string shownPath(const std::filesystem::path& path) {
  return '"' + shownText(path.string(), std::string::npos) + '"';
}

}  // namespace gavrel
