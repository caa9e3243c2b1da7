#include "Platform/NumberText.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>

#include "Tests/Platform/Spellings.h"
#include "Tests/Text.h"

using namespace gavrel;

namespace {

using Limits = std::numeric_limits<double>;

std::string jsonText(double number) {
  std::string text;
  appendJsonNumber(text, number);
  return text;
}

TEST(NumberText, ChoosesTheFormByTheSize) {
  // Each number as it is shown, and as JSON has it.
  const auto texts = words(
      "0.0 0  -0.0 -0.0  1.0 1  -2.5 -2.5  0.0001 0.0001  -0.00012345678901234567 -0.00012345678901234567 "
      "9.999999999999999e-05 9.999999999999999e-05  1e-05 1e-05  9007199254740991.0 9007199254740991 "
      "9007199254740992.0 9007199254740992  -9007199254740992.0 -9007199254740992  1e+16 1e+16  5e-324 5e-324 "
      "9.007199254740994e+15 9.007199254740994e+15  1.7976931348623157e+308 1.7976931348623157e+308");
  for (std::size_t i = 0; i < texts.size(); i += 2) {
    const double number = std::strtod(texts[i].c_str(), nullptr);
    EXPECT_EQ(numberText(number), texts[i]);
    EXPECT_EQ(jsonText(number), texts[i + 1]);
  }
  for (const double sign : {1.0, -1.0}) EXPECT_EQ(numberText(std::copysign(Limits::quiet_NaN(), sign)), "nan");
  EXPECT_EQ(numberText(Limits::infinity()), "inf");
  EXPECT_EQ(numberText(-Limits::infinity()), "-inf");
}

TEST(NumberText, ReadsBackToTheSameBits) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 200000; ++i) {
    // Every other number is of an everyday size, where the positional form is used.
    const double number =
        i % 2 == 0 ? std::bit_cast<double>(random()) : std::ldexp(double(random()), int(random() % 80) - 90);
    if (!std::isfinite(number)) continue;
    const auto bits = std::bit_cast<std::uint64_t>(number);
    for (const auto& text : {numberText(number), jsonText(number)})
      ASSERT_EQ(std::bit_cast<std::uint64_t>(std::strtod(text.c_str(), nullptr)), bits) << text;
  }
}

TEST(ParseNumber, TakesNothingButANumber) {
  for (const auto& text : words("0 -1 +2.5 100e3 1E-05 .5 5. 0x1p3 -0XAp0 1e400 1e-400 inf -Infinity"))
    EXPECT_EQ(parseNumber(text), std::strtod(text.c_str(), nullptr)) << text;
  EXPECT_TRUE(std::isnan(parseNumber("NaN").value()));
  for (const auto* text : {"", " 1", "1 ", "\t1", "1,000", "1,5", "abc", "1e", "0x", "--1", "1.0.0", "1_000", "in"})
    EXPECT_EQ(parseNumber(text), std::nullopt) << '"' << text << '"';
  EXPECT_EQ(parseNumber(std::string("1\0", 2)), std::nullopt);
}

TEST(ParseNumber, RoundsToTheNearestDouble) {
  Spellings spellings;
  for (int i = 0; i < 20000; ++i) {
    const std::string text = spellings.next();
    const double nearest = std::strtod(text.c_str(), nullptr);  // which rounds correctly
    ASSERT_EQ(std::bit_cast<std::uint64_t>(parseNumber(text).value()), std::bit_cast<std::uint64_t>(nearest)) << text;
    ASSERT_EQ(parseJsonNumber(text), std::isinf(nearest) ? std::nullopt : std::optional(nearest)) << text;
  }
}

TEST(ParseJsonNumber, TakesTheNotationOfJsonOnly) {
  for (const auto& text : words("-0 0.30000000000000000000001 -0.20000000000000000000e1 1.5e0000000000000000000001 "
                                "0e99999999999999999999 -1e-99999999999999999999 2.4703282292062328e-324 "
                                "1.7976931348623158e308")) {
    const auto read = parseJsonNumber(text);
    ASSERT_TRUE(read) << text;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(*read), std::bit_cast<std::uint64_t>(std::strtod(text.c_str(), nullptr)));
  }
  for (const auto* text : {"", "1 ", " 1"}) EXPECT_EQ(parseJsonNumber(text), std::nullopt) << '"' << text << '"';
  for (const auto& text : words("- +1 01 -01 00 .5 -.5 5. 5.e1 1e 1e+ 1e1.5 0x10 inf nan -nan 1,5 1.5.5 1e1000 "
                                "-1.7976931348623159e308"))
    EXPECT_EQ(parseJsonNumber(text), std::nullopt) << text;
}

TEST(ParseJsonNumber, KeepsEveryDigitOfWholeNumbers) {
  std::mt19937_64 random(2);
  for (int i = 0; i < 20000; ++i) {
    const auto number = static_cast<std::int64_t>(random()) >> random() % 64;
    const std::string digits = std::to_string(number);
    const std::size_t zeros = random() % 30;
    const std::string shift = std::string(random() % 30, '0') + std::to_string(zeros);
    for (const std::string& whole : {digits, digits + '.' + std::string(zeros + 1, '0'),
                                     digits + std::string(number == 0 ? 0 : zeros, '0') + "e-" + shift,
                                     digits + '.' + std::string(zeros, '0') + "0e+0"})
      ASSERT_EQ(parseJsonWholeNumber(whole), number) << whole;
    for (const std::string& other : {digits + ".5", digits + '.' + std::string(zeros, '0') + '1', digits + "1e-1"})
      ASSERT_EQ(parseJsonWholeNumber(other), std::nullopt) << other;
  }
}

TEST(NumberText, RoundsForReading) {
  EXPECT_EQ(roundedNumberText(-1234.5678, 4), "-1235.0");
  EXPECT_EQ(roundedNumberText(0.00012344999, 3), "0.000123");
  EXPECT_EQ(roundedNumberText(9.9999e-6, 4), "1e-05");
  EXPECT_EQ(roundedNumberText(-INFINITY, 4), "-inf");
}

}  // namespace
