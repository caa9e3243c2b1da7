#include "Platform/NumberText.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>

namespace {

using Limits = std::numeric_limits<double>;

std::string jsonText(double number) {
  std::string text;
  appendJsonNumber(text, number);
  return text;
}

TEST(NumberText, ChoosesTheFormByTheSize) {
  constexpr double pow53 = 9007199254740992.0;
  const struct {
    double number;
    const char* text;
    const char* json;
  } cases[] = {
      {0.0, "0.0", "0"},
      {-0.0, "-0.0", "-0.0"},
      {1.0, "1.0", "1"},
      {-2.5, "-2.5", "-2.5"},
      {1e-4, "0.0001", "0.0001"},
      {-1.2345678901234567e-4, "-0.00012345678901234567", "-0.00012345678901234567"},
      {std::nextafter(1e-4, 0.0), "9.999999999999999e-05", "9.999999999999999e-05"},
      {1e-5, "1e-05", "1e-05"},
      {pow53 - 1, "9007199254740991.0", "9007199254740991"},
      {pow53, "9007199254740992.0", "9007199254740992"},
      {-pow53, "-9007199254740992.0", "-9007199254740992"},
      {pow53 + 2, "9.007199254740994e+15", "9.007199254740994e+15"},
      {1e16, "1e+16", "1e+16"},
      {Limits::denorm_min(), "5e-324", "5e-324"},
      {Limits::max(), "1.7976931348623157e+308", "1.7976931348623157e+308"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(numberText(c.number), c.text);
    EXPECT_EQ(jsonText(c.number), c.json);
  }
  EXPECT_EQ(numberText(Limits::quiet_NaN()), "nan");
  EXPECT_EQ(numberText(-Limits::quiet_NaN()), "nan");
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
  const struct {
    const char* text;
    double number;
  } numbers[] = {{"0", 0},
                 {"-1", -1},
                 {"+2.5", 2.5},
                 {"100e3", 1e5},
                 {"1E-05", 1e-5},
                 {".5", 0.5},
                 {"5.", 5},
                 {"0x1p3", 8},
                 {"-0XAp0", -10},
                 {"1e400", Limits::infinity()},
                 {"1e-400", 0},
                 {"inf", Limits::infinity()},
                 {"-Infinity", -Limits::infinity()}};
  for (const auto& c : numbers) EXPECT_EQ(parseNumber(c.text), c.number) << c.text;
  EXPECT_TRUE(std::isnan(parseNumber("NaN").value()));
  for (const auto* text : {"", " 1", "1 ", "\t1", "1,000", "1,5", "abc", "1e", "0x", "--1", "1.0.0", "1_000", "in"})
    EXPECT_EQ(parseNumber(text), std::nullopt) << '"' << text << '"';
  EXPECT_EQ(parseNumber(std::string("1\0", 2)), std::nullopt);
}

TEST(ParseJsonNumber, TakesTheNotationOfJsonOnly) {
  for (const auto& [text, number] : {std::pair{"-0", -0.0},
                                     {"0.30000000000000000000001", 0.3},
                                     {"-0.20000000000000000000e1", -2.0},
                                     {"1.5e0000000000000000000001", 15.0},
                                     {"0e99999999999999999999", 0.0},
                                     {"-1e-99999999999999999999", -0.0},
                                     {"2.4703282292062328e-324", Limits::denorm_min()},
                                     {"1.7976931348623158e308", Limits::max()}}) {
    const auto read = parseJsonNumber(text);
    ASSERT_TRUE(read) << text;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(*read), std::bit_cast<std::uint64_t>(number)) << text;
  }
  for (const auto* text : {"",
                           "-",
                           "+1",
                           "01",
                           "-01",
                           "00",
                           ".5",
                           "-.5",
                           "5.",
                           "5.e1",
                           "1e",
                           "1e+",
                           "1e1.5",
                           "0x10",
                           "inf",
                           "nan",
                           "-nan",
                           "1 ",
                           " 1",
                           "1,5",
                           "1.5.5",
                           "1e1000",
                           "-1.7976931348623159e308"})
    EXPECT_EQ(parseJsonNumber(text), std::nullopt) << '"' << text << '"';
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
