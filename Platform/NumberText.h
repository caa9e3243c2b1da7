#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace gavrel {

/// Text of `number` with the fewest digits that read back to the same double: positional with at least one decimal for
/// zero and for 1e-4 <= |number| <= 2^53 ("0.0", "-2.5", "100000.0"), otherwise with an exponent of at least two digits
/// and its sign ("1e-05", "1e+16"); "nan", "inf", "-inf".
[[nodiscard]] std::string numberText(double number);

/// numberText of `number` rounded to so many significant digits: for reading, not for reading back.
[[nodiscard]] std::string roundedNumberText(double number, int digits);

/// The number that the whole of `text` spells: decimal or hexadecimal ("0x1p3"), with an optional sign and exponent, or
/// infinity or NaN ("inf", "infinity", "nan" in any case). Nothing for any other text, spaces around a number and an
/// empty text included. Numbers too large become infinite, too small ones zero. The user's locale does not matter.
[[nodiscard]] std::optional<double> parseNumber(const std::string& text);

/// The double nearest to the number that the whole of `token` spells in JSON's notation; nothing for any other text and
/// for numbers too large for a double. Numbers too small become zero.
[[nodiscard]] std::optional<double> parseJsonNumber(std::string_view token);

/// The whole number that `token` spells in JSON's notation, however written ("3", "3.0", "0.3e1"); nothing for any
/// other text, for fractions and for numbers beyond 64 bits.
[[nodiscard]] std::optional<std::int64_t> parseJsonWholeNumber(std::string_view token);

/// Appends the JSON form of a finite `number`: numberText without the fraction of a whole number ("100", "1e+16"), and
/// negative zero as "-0.0" so that its sign is read back.
void appendJsonNumber(std::string& text, double number);

/// Appends the decimal digits of `number`.
void appendJsonNumber(std::string& text, std::int64_t number);

}  // namespace gavrel
