#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>

namespace gavrel {

/// Decimal numbers that are hard to round: long, halfway between two doubles or beside it, as small or large as doubles
/// get.
class Spellings {
 public:
  std::string next() {
    std::string text = upTo(1) == 0 ? "-" : "";
    switch (upTo(3)) {
      case 0:
        return text + halfway();
      case 1:
        return text + printed("%.*Le", static_cast<int>(upTo(25)), magnitude());
      default:
        return text + free();
    }
  }

 private:
  std::size_t upTo(std::size_t most) { return random_() % (most + 1); }

  std::string digits(std::size_t most) {
    std::string text(upTo(most) + 1, '0');
    for (char& digit : text) digit = static_cast<char>('0' + upTo(9));
    return text;
  }

  /// A finite number; one in four has no more than 52 binary digits because it is so small.
  double magnitude() {
    const std::uint64_t bits = random_() & (upTo(3) == 0 ? ~0ULL >> 12 : ~0ULL >> 1);
    const auto number = std::bit_cast<double>(bits);
    return std::isfinite(number) ? number : 1.5;
  }

  static std::string printed(const char* format, int decimals, long double number) {
    std::array<char, 1200> text{};
    const int length = std::snprintf(text.data(), text.size(), format, decimals, number);
    return {text.data(), static_cast<std::size_t>(length)};
  }

  /// The number between two doubles, with all its digits; often a little more or less.
  std::string halfway() {
    const double lower = magnitude();
    const double upper = std::nextafter(lower, 2 * lower);
    const long double middle = lower + (static_cast<long double>(upper) - lower) / 2;
    std::string text = printed("%.*Le", 1100, middle);
    if (upTo(2) == 0) text[text.find('e') - 1 - upTo(300)] = '1';
    if (upTo(2) == 0) text.erase(text.find('e') - 1 - upTo(400), 1);
    return text;
  }

  std::string free() {
    std::string text = upTo(1) == 0 ? "0" : std::to_string(upTo(8) + 1) + (upTo(1) == 0 ? digits(25) : "");
    if (upTo(3) > 0) text += '.' + std::string(upTo(1) * upTo(30), '0') + digits(30);
    if (upTo(1) == 0) return text;
    constexpr std::array signs{"", "+", "-"};
    text += upTo(1) == 0 ? 'e' : 'E';
    text += signs[upTo(2)];
    return text + std::string(upTo(5) == 0 ? upTo(25) : 0, '0') + std::to_string(upTo(upTo(1) == 0 ? 340 : 25));
  }

  std::mt19937_64 random_{5};
};

}  // namespace gavrel
