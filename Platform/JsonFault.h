#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// The first place where a text stops being JSON.
struct JsonFault {
  std::size_t offset;  ///< in bytes from the start of the text
  std::string reason;

  /// "line 3, column 14 (byte 57): reason"; columns count bytes from 1.
  [[nodiscard]] std::string describe(std::string_view text) const;
};

/// Scans `text` by the grammar of RFC 8259, numbers within the range of a double and strings in valid UTF-8. It is
/// slower than the parser proper and serves to say where and why that one gave up.
[[nodiscard]] std::optional<JsonFault> scanJson(std::string_view text);
