#pragma once

#include <cstdint>
#include <string>

/// Text of `number` with the fewest digits that read back to the same double: positional with at least one decimal for
/// zero and for 1e-4 <= |number| <= 2^53 ("0.0", "-2.5", "100000.0"), otherwise with an exponent of at least two digits
/// and its sign ("1e-05", "1e+16"); "nan", "inf", "-inf".
[[nodiscard]] std::string numberText(double number);

/// Appends the JSON form of a finite `number`: numberText without the fraction of a whole number ("100", "1e+16"), and
/// negative zero as "-0.0" so that its sign is read back.
void appendJsonNumber(std::string& text, double number);

/// Appends the decimal digits of `number`.
void appendJsonNumber(std::string& text, std::int64_t number);
