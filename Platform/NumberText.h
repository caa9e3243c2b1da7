#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// Text of `number` with the fewest digits that read back to the same double: positional with at least one decimal for
/// zero and for 1e-4 <= |number| <= 2^53 ("0.0", "-2.5", "100000.0"), otherwise with an exponent of at least two digits
/// and its sign ("1e-05", "1e+16"); "nan", "inf", "-inf".
[[nodiscard]] std::string numberText(double number);

/// The number that the whole of `text` spells: decimal or hexadecimal ("0x1p3"), with an optional sign and exponent, or
/// infinity or NaN ("inf", "infinity", "nan" in any case). Nothing for any other text, spaces around a number and an
/// empty text included. Numbers too large become infinite, too small ones zero. The user's locale does not matter.
[[nodiscard]] std::optional<double> parseNumber(const std::string& text);

/// Appends the JSON form of a finite `number`: numberText without the fraction of a whole number ("100", "1e+16"), and
/// negative zero as "-0.0" so that its sign is read back.
void appendJsonNumber(std::string& text, double number);

/// Appends the decimal digits of `number`.
void appendJsonNumber(std::string& text, std::int64_t number);
