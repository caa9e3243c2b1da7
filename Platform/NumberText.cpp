#include "Platform/NumberText.h"

#include <locale.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>

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

std::optional<double> parseNumber(const std::string& text) {
  static const locale_t plainLocale = ::newlocale(LC_ALL_MASK, "C", nullptr);
  // strtod skips leading white space, which is no part of a number here.
  if (text.empty() || text.find_first_of(" \t\n\v\f\r") == 0) return std::nullopt;
  char* end = nullptr;
  const double number = ::strtod_l(text.c_str(), &end, plainLocale);
  if (end != text.c_str() + text.size()) return std::nullopt;
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
