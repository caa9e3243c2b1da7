#include "Platform/NumberText.h"

#include <locale.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace gavrel {

namespace {

constexpr double wholeLimit = 9007199254740992.0;  // 2^53, the last whole number before doubles skip some
constexpr std::size_t longestNumber = 32;

using Buffer = std::array<char, longestNumber>;

/// Digits of a finite number in the form that its size asks for; without a fraction where it has none.
std::string_view shortestDigits(Buffer& buffer, double number) {
  const double size = std::abs(number);
  const bool positional = size == 0.0 || (size >= 1e-4 && size <= wholeLimit);
  auto* const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                  positional ? std::chars_format::fixed : std::chars_format::scientific)
                        .ptr;
  return {buffer.data(), static_cast<std::size_t>(end - buffer.data())};
}

}  // namespace

std::string numberText(double number) {
  if (std::isnan(number)) return "nan";
  if (std::isinf(number)) return number < 0 ? "-inf" : "inf";
  Buffer buffer;
  std::string text(shortestDigits(buffer, number));
  if (text.find_first_of(".e") == std::string::npos) text += ".0";
  return text;
}

std::string roundedNumberText(double number, int digits) {
  Buffer buffer;
  char* const begin = buffer.data();
  const char* end = std::to_chars(begin, begin + buffer.size(), number, std::chars_format::scientific, digits - 1).ptr;
  double rounded = number;
  std::from_chars(begin, end, rounded);
  return numberText(rounded);
}

std::optional<double> parseNumber(const std::string& text) {
  static const locale_t plainLocale = ::newlocale(LC_ALL_MASK, "C", nullptr);
  // strtod skips leading white space, which is no part of a number here.
  if (text.empty() || text.find_first_of(" \t\n\v\f\r") == 0) return std::nullopt;
  char* end = nullptr;
  const double number = ::strtod_l(text.c_str(), &end, plainLocale);
  if (end != text.c_str() + text.size()) return std::nullopt;
  return number;
}

std::optional<double> parseJsonNumber(std::string_view token) {
  const auto isDigit = [token](std::size_t i) { return i < token.size() && token[i] >= '0' && token[i] <= '9'; };
  const std::size_t first = token.starts_with('-') ? 1 : 0;
  std::size_t i = first;
  while (isDigit(i)) ++i;
  // from_chars takes more than JSON has: "nan", ".5", "01", "5.".
  if (i == first || (token[first] == '0' && i > first + 1)) return std::nullopt;
  if (i < token.size() && token[i] == '.' && !isDigit(i + 1)) return std::nullopt;
  double number = 0;
  const auto [end, error] = std::from_chars(token.data(), token.data() + token.size(), number);
  if (end != token.data() + token.size()) return std::nullopt;
  if (error == std::errc()) return number;
  const auto limit = parseNumber(std::string(token));  // infinite or, where it is too small, zero
  return limit && std::isfinite(*limit) ? limit : std::nullopt;
}

std::optional<std::int64_t> parseJsonWholeNumber(std::string_view token) {
  if (!parseJsonNumber(token)) return std::nullopt;
  const std::string_view sign = token.substr(0, token.starts_with('-') ? 1 : 0);
  const std::size_t mark = std::min(token.find_first_of("eE"), token.size());
  std::string digits(token.substr(sign.size(), mark - sign.size()));
  // Without point and outer zeros, the number is 0.DIGITS times ten to the power of `places`.
  std::ptrdiff_t places = static_cast<std::ptrdiff_t>(std::min(digits.find('.'), digits.size()));
  std::erase(digits, '.');
  digits.erase(digits.find_last_not_of('0') + 1);  // npos + 1 is 0: nothing but zeros
  if (digits.empty()) return 0;
  const std::size_t zeros = digits.find_first_not_of('0');
  digits.erase(0, zeros);
  places -= static_cast<std::ptrdiff_t>(zeros);

  std::string_view exponentText = token.substr(std::min(mark + 1, token.size()));
  if (exponentText.starts_with('+')) exponentText.remove_prefix(1);
  int exponent = 0;
  const auto parsed = std::from_chars(exponentText.data(), exponentText.data() + exponentText.size(), exponent);
  if (!exponentText.empty() && parsed.ec != std::errc()) return std::nullopt;
  places += exponent;
  constexpr std::ptrdiff_t maxDigits = std::numeric_limits<std::int64_t>::digits10 + 1;
  if (std::ssize(digits) > places || places > maxDigits) return std::nullopt;
  digits.resize(static_cast<std::size_t>(places), '0');
  digits.insert(0, sign);
  std::int64_t number = 0;
  if (std::from_chars(digits.data(), digits.data() + digits.size(), number).ec != std::errc()) return std::nullopt;
  return number;
}

void appendJsonNumber(std::string& text, double number) {
  if (number == 0.0) {
    text += std::signbit(number) ? "-0.0" : "0";
  } else if (std::abs(number) <= wholeLimit && number == std::trunc(number)) {
    appendJsonNumber(text, static_cast<std::int64_t>(number));
  } else {
    Buffer buffer;
    text += shortestDigits(buffer, number);
  }
}

void appendJsonNumber(std::string& text, std::int64_t number) {
  Buffer buffer;
  auto* const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
  text.append(buffer.data(), end);
}

}  // namespace gavrel
