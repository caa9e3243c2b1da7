#include <gmock/gmock.h>

#include <bit>
#include <cmath>

#include "Exchange/Draft.h"
#include "Exchange/DxfGroups.h"

using namespace gavrel;

namespace {

using testing::ElementsAre;

const std::string sentinel("AutoCAD Binary DXF\r\n\x1a\0", 22);

template <class Integer>
std::string bytesOf(Integer integer) {
  std::string bytes;
  for (std::size_t i = 0; i < sizeof(integer); ++i)
    bytes += static_cast<char>(static_cast<std::uint64_t>(integer) >> (8 * i));
  return bytes;
}

std::string bytesOf(double number) {
  return bytesOf(std::bit_cast<std::uint64_t>(number));
}

/// "code=value" of each group up to EOF, and the reason of a failure.
std::vector<std::string> read(const std::string& file) {
  std::vector<std::string> found;
  try {
    DxfGroups groups(file);
    for (DxfGroup group = groups.next(); group.text() != "EOF"; group = groups.next()) {
      const bool isNumber = std::holds_alternative<double>(group.value);
      found.push_back(std::to_string(group.code) + "=" +
                      (isNumber ? std::to_string(group.number()) : std::string(group.text())));
    }
  } catch (const ImportError& error) {
    found.emplace_back(error.what());
  }
  return found;
}

}  // namespace

TEST(DxfGroups, ReadsBinaryFilesOfBothKinds) {
  for (const bool isOld : {false, true}) {
    const auto code = [isOld](int number) {
      if (!isOld) return bytesOf(static_cast<std::int16_t>(number));
      if (number < 255) return std::string(1, static_cast<char>(number));
      return "\xff" + bytesOf(static_cast<std::int16_t>(number));
    };
    const std::string nul(1, '\0');
    const std::string start = sentinel + code(0) + "SECTION" + nul;
    const std::string end = code(0) + "EOF" + nul;
    EXPECT_THAT(read(start + code(10) + bytesOf(-2.5) + code(70) + bytesOf(std::int16_t{-3}) + code(90) +
                     bytesOf(std::int32_t{70000}) + code(160) + bytesOf(std::int64_t{1} << 40) + code(290) + "\x01" +
                     code(310) + "\x02\x01" + nul + code(1004) + nul + code(1071) + bytesOf(std::int32_t{-1}) +
                     code(8) + " wall " + nul + end + "rest"),
                ElementsAre("0=SECTION", "10=-2.500000", "70=-3.000000", "90=70000.000000", "160=1099511627776.000000",
                            "290=1.000000", "310=\x01" + nul, "1004=", "1071=-1.000000", "8=wall"));
    const std::string place = "byte " + std::to_string(start.size());
    const std::string value = "byte " + std::to_string(start.size() + code(10).size());
    EXPECT_THAT(read(start + code(80) + end), ElementsAre("0=SECTION", place + ": expected a group code, found 80"));
    for (const std::string& cut : {code(10) + "1234567", code(8) + "wall", code(310) + "\x02\x01"})
      EXPECT_THAT(read(start + cut).back(), testing::EndsWith(": the file ends before its EOF"));
    EXPECT_THAT(read(start + code(10) + bytesOf(std::nan(""))).back(), value + ": expected a number, found nan");
  }
  EXPECT_THAT(read("AutoCAD Binary DXF\n\x1a"),
              ElementsAre("byte 0: the beginning of this binary DXF file is damaged"));
  EXPECT_THAT(read(sentinel + "\xe7\x03" + "note" + std::string("\0\0\0EOF\0", 7)), ElementsAre("999=note"));
}
