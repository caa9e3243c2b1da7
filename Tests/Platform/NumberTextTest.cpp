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

}  // namespace
