#include "Platform/JsonReader.h"

#include <gmock/gmock.h>

#include <cmath>

namespace {

/// Reads the value at the root, or wrapped into an array if it is neither an object nor an array.
template <class Value>
Value read(const std::string& text) {
  Value value{};
  JsonDocument("[" + text + "]").read([&value](JsonValue root) {
    for (const auto item : jsonArray(root)) readJson(jsonResult<JsonValue>(item), value);
  });
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

/// The fault of a whole text whose root should be an array of numbers.
std::string faultOfText(const std::string& text) {
  std::vector<double> numbers;
  try {
    JsonDocument(text).read([&numbers](JsonValue root) { readJson(root, numbers); });
  } catch (const JsonError& error) {
    return error.what();
  }
  return "none";
}

struct Point {
  double x = 0;
  double y = 7;
};

constexpr std::array pointMembers{
    JsonMember<Point>{"x", [](JsonValue json, Point& to) { readJson(json, to.x); }},
    JsonMember<Point>{"\u03b8", [](JsonValue json, Point& to) { readJson(json, to.y); }, false}};

void readJson(JsonValue json, Point& point) {
  readJsonObject(json, point, pointMembers);
}

TEST(JsonReader, ReadsNumbersOfEveryNotation) {
  EXPECT_EQ(read<std::vector<double>>("[1, -2.5, 1e-999, 4.9e-324, 18446744073709551615]"),
            (std::vector<double>{1, -2.5, 0, 4.9e-324, 18446744073709551615.0}));
  EXPECT_EQ(read<std::vector<double>>("[100000000000000000000, -9223372036854775809, 7,\n123456789012345678901234]"),
            (std::vector<double>{1e20, -9223372036854775809.0, 7, 123456789012345678901234.0}));
  EXPECT_TRUE(std::signbit(read<double>("-0.0")));
  EXPECT_TRUE(std::signbit(read<double>("-0")));
}

TEST(JsonReader, ReadsObjectsInAnyOrderOfKeys) {
  for (const char* text : {R"({"x": 1, "θ": 2})", "{\"\u03b8\": 2, \"x\": 1}",
                           R"({"a": {"x": [3, {}]}, "\u0078": 1, "b": "\n", "\u03b8": 2, "c": null, "d": false})"}) {
    SCOPED_TRACE(text);
    const auto point = read<Point>(text);
    EXPECT_EQ(point.x, 1);
    EXPECT_EQ(point.y, 2);
  }
  EXPECT_EQ(read<Point>(R"({"x": 1})").y, 7);
  EXPECT_EQ(faultOf<Point>(R"({"y": 1})"), R"("x" is missing)");
  EXPECT_EQ(faultOf<Point>(R"({"x": 1, "x": 1})"), R"("x" stands twice)");
  EXPECT_EQ(faultOf<Point>(R"({"x": []})"), "x: expected a number, found an array");
}

TEST(JsonReader, RefusesFaultsInPartsThatNobodyReads) {
  for (const char* unread : {"[1 2]", "{\"b\"}", "tru", "01", "nul", "\"\\x\"", "[[[]", "{\"b\": nan}", "1e999"}) {
    SCOPED_TRACE(unread);
    EXPECT_THAT(faultOf<Point>("{\"a\": " + std::string(unread) + ", \"x\": 1}"),
                testing::StartsWith("not valid JSON"));
  }
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
  EXPECT_EQ(faultOf<Point>("[]"), "expected an object, found an array");
  EXPECT_STREQ(JsonError("wrong").within("y").within(1).within("F_I").what(), "F_I[1].y: wrong");
}

TEST(JsonReader, TellsWhereATextIsNotJson) {
  EXPECT_EQ(faultOfText("[1,\n2"),
            "not valid JSON at line 2, column 2 (byte 5): expected ',' or ']', but the text ends");
  EXPECT_EQ(faultOfText("[1] 2"),
            "not valid JSON at line 1, column 5 (byte 4): expected the end of the text after the value");
  EXPECT_EQ(faultOfText("1.5"), "expected an object or an array");
  EXPECT_EQ(faultOfText("\xEF\xBB\xBF[1, 2]"), "none");
  EXPECT_EQ(faultOfText("\xEF\xBB\xBF[1,]"), "not valid JSON at line 1, column 7 (byte 6): expected a value");
}

}  // namespace
