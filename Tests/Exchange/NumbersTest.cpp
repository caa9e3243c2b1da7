#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "DataModel/ProjectFile.h"
#include "Exchange/Import.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

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

std::string projectText(const std::string& coordinates) {
  return R"({"name": "", "trussElements": [], "F_I": [], "D_I": [], "X_I": [)" + coordinates + "]}";
}

class EveryReader : public testing::Test {
 protected:
  std::vector<std::string> spellings;
  std::vector<std::string> tooLarge;  ///< for a double
  const TemporaryFolder folder;
  Project project;

  EveryReader() {
    for (Spellings all; spellings.size() < 20000;) {
      const std::string spelling = all.next();
      (std::isinf(std::strtod(spelling.c_str(), nullptr)) ? tooLarge : spellings).push_back(spelling);
    }
  }

  /// Compares with what strtod, which rounds correctly, makes of the spellings.
  template <class Coordinate>
  void expectNearest(const Coordinate& coordinate) const {
    for (std::size_t i = 0; i < spellings.size(); ++i) {
      const double nearest = std::strtod(spellings[i].c_str(), nullptr);
      ASSERT_EQ(std::bit_cast<std::uint64_t>(coordinate(i)), std::bit_cast<std::uint64_t>(nearest)) << spellings[i];
    }
  }

  bool imports(const char* name, const std::string& text) {
    return static_cast<bool>(importFiles(project, {folder.put(name, text)}, {.tolerance = 0.1}));
  }
};

}  // namespace

TEST_F(EveryReader, RoundsNumbersOfProjectFiles) {
  std::string list;
  for (const std::string& spelling : spellings) list += (list.empty() ? "" : ", ") + spelling;
  const auto read = decodeProject(projectText(list));
  ASSERT_TRUE(read) << read.failure().reason;
  expectNearest([&](std::size_t i) { return (*(*read)->X_I)[i]; });
  for (const std::string& spelling : tooLarge) EXPECT_FALSE(decodeProject(projectText(spelling))) << spelling;
}

TEST_F(EveryReader, RoundsNumbersOfTables) {
  std::string table = "x\ty\n";
  for (const std::string& spelling : spellings) table += spelling + "\t0\n";
  ASSERT_TRUE(imports("points.csv", table));
  expectNearest([this](std::size_t i) { return (*project.X_I)[3 * i]; });
  for (const std::string& spelling : tooLarge) EXPECT_FALSE(imports("a.csv", "x,y\n0," + spelling)) << spelling;
}

TEST_F(EveryReader, RoundsNumbersOfDrawings) {
  std::string drawing = "0\nSECTION\n2\nENTITIES\n";
  const auto line = [](const std::string& x, const std::string& y) {
    return "0\nLINE\n10\n" + x + "\n20\n" + y + "\n11\n0\n21\n" + y + "\n31\n9\n";
  };
  const std::string end = "0\nENDSEC\n0\nEOF\n";
  std::string text = drawing;
  for (std::size_t i = 0; i < spellings.size(); ++i) text += line(spellings[i], std::to_string(i));
  ASSERT_TRUE(imports("lines.dxf", text + end));
  expectNearest([this](std::size_t i) { return (*project.X_I)[6 * i]; });
  for (const std::string& spelling : tooLarge) EXPECT_FALSE(imports("a.dxf", drawing + line(spelling, "0") + end));
}
