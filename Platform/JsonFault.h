#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace gavrel {

/// The first place where a text stops being JSON.
struct JsonFault {
  std::size_t offset;  ///< in bytes from the start of the text
  std::string reason;

  /// "line 3, column 14 (byte 57): reason"; columns count bytes from 1.
  [[nodiscard]] std::string describe(std::string_view text) const;
};

/// Finds where and why a text that the reader has rejected is not JSON; a leading byte order mark is skipped. Nothing
/// if it is JSON, or if a number that this parser cannot read stands before the fault.
[[nodiscard]] std::optional<JsonFault> findJsonFault(std::string_view text);

}  // namespace gavrel
