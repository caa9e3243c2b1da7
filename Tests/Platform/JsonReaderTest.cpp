#include "Platform/JsonReader.h"

#include <gmock/gmock.h>

#include <cmath>

namespace {

template <class Value>
Value read(const std::string& text) {
  const JsonDocument document(text);
  Value value{};
  readJson(document.root(), value);
  return value;
}

template <class Value>
std::string faultOf(const std::string& text) {
  try {
    static_cast<void>(read<Value>(text));
  } catch (const JsonError& error) {
    return error.what();
  }
  return "none";
}

TEST(JsonReader, ReadsNumbersOfEveryNotation) {
  const std::string mark = "\xEF\xBB\xBF";
  EXPECT_EQ(read<std::vector<double>>(mark + "[1, -2.5, 1e-999, 4.9e-324, 18446744073709551615]"),
            (std::vector<double>{1, -2.5, 0, 4.9e-324, 18446744073709551615.0}));
  EXPECT_EQ(read<std::vector<double>>("[100000000000000000000, -9223372036854775809, 7,\n123456789012345678901234]"),
            (std::vector<double>{1e20, -9223372036854775809.0, 7, 123456789012345678901234.0}));
  EXPECT_EQ(read<double>("100000000000000000000"), 1e20);
  EXPECT_TRUE(std::signbit(read<double>("-0.0")));
}

TEST(JsonReader, TakesOnlyWholeNumbersForIntegers) {
  EXPECT_EQ(read<std::vector<std::int64_t>>("[3, 3.0, -3e2, -0, 9223372036854775807, -9.223372036854775808e18]"),
            (std::vector<std::int64_t>{3, 3, -300, 0, INT64_MAX, INT64_MIN}));
  for (const char* const text : {"3.5", "1e-1", "9223372036854775808", "9.223372036854775808e18",
                                 "-9.223372036854778e18", "100000000000000000000", "true", "\"3\"", "null"})
    EXPECT_THAT(faultOf<std::int64_t>(text), testing::StartsWith("expected a whole number, found "));
}

TEST(JsonReader, TellsWhatItExpectedAndFound) {
  EXPECT_EQ(faultOf<bool>("1.0"), "expected true or false, found the number 1");
  EXPECT_EQ(faultOf<bool>("\"true\""), "expected true or false, found a text");
  EXPECT_EQ(faultOf<std::vector<double>>("{}"), "expected an array, found an object");
  EXPECT_EQ(faultOf<std::vector<double>>("[1, [2], 3]"), "[1]: expected a number, found an array");
  EXPECT_THROW(static_cast<void>(jsonObject(JsonDocument("[]").root())), JsonError);
  EXPECT_STREQ(JsonError("[1]: wrong").within("F_I").what(), "F_I[1]: wrong");
  EXPECT_STREQ(JsonError("wrong").within("name").what(), "name: wrong");
  EXPECT_EQ(faultOf<double>("[1,\n2"),
            "not valid JSON at line 2, column 2 (byte 5): expected ',' or ']', but the text ends");
}

TEST(JsonReader, RefusesNestingBeyondItsDepth) {
  const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
  EXPECT_NO_THROW(JsonDocument{nested(1000)});
  EXPECT_THAT(faultOf<double>(nested(100000)), testing::StartsWith("the JSON text cannot be taken in: "));
}

}  // namespace
