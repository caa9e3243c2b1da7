#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "Exchange/Lines.h"

namespace gavrel {

/// Where something stands in a drawing: a line, counted from 1, or a byte of a binary file, counted from 0.
struct DxfPlace {
  std::size_t number = 0;
  bool isByte = false;

  /// Throws an ImportError that names the place.
  [[noreturn]] void refuse(const std::string& why) const;
};

/// A group code and its value.
struct DxfGroup {
  int code = 0;
  std::variant<std::string_view, double> value = {};  ///< a number only in a binary file, whose codes say which are
  DxfPlace place = {};                                ///< of the value

  /// Empty for a number of a binary file.
  [[nodiscard]] std::string_view text() const;
  /// Throws ImportError for what is no finite number.
  [[nodiscard]] double number() const;
  /// Throws ImportError for what is no whole number from 0 to INT_MAX.
  [[nodiscard]] int wholeNumber() const;
};

/// The groups of a drawing, one after the other, of a text or a binary file. What it gives are views of the file.
class DxfGroups {
 public:
  /// Throws ImportError for a binary file whose beginning is damaged.
  explicit DxfGroups(std::string_view dxf);

  /// The next group. Throws ImportError for what is no group, and if there is none.
  [[nodiscard]] DxfGroup next();

 private:
  [[nodiscard]] DxfGroup nextOfText();
  [[nodiscard]] DxfGroup nextOfBinary();
  [[nodiscard]] int takeCode();
  [[nodiscard]] std::string_view takeBytes(std::size_t count);
  [[nodiscard]] std::uint64_t takeInteger(std::size_t bytes);
  [[nodiscard]] DxfPlace byte() const { return {at_, true}; }

  Lines lines_;  // of a text
  std::string_view binary_;
  std::size_t at_ = 0;  // in the binary file
  bool isBinary_ = false;
  bool isOldBinary_ = false;  // its group codes have one byte
};

}  // namespace gavrel
