#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The first place where a text stops being JSON.
struct JsonFault {
  std::size_t offset;  ///< in bytes from the start of the text
  std::string reason;

  /// "line 3, column 14 (byte 57): reason"; columns count bytes from 1.
  [[nodiscard]] std::string describe(std::string_view text) const;
};

/// What a scan of a whole text found.
struct JsonScan {
  std::optional<JsonFault> fault;
  std::vector<std::size_t> wideIntegerEnds;  ///< offsets just after whole numbers that no 64-bit integer holds
};

/// Scans `text` by the grammar of RFC 8259, numbers within the range of a double and strings in valid UTF-8. It is
/// slower than the parser proper and serves to say where and why that one gave up.
[[nodiscard]] JsonScan scanJson(std::string_view text);
