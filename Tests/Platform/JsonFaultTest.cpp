#include "Platform/JsonFault.h"

#include <gtest/gtest.h>
#include <simdjson.h>

#include <random>
#include <string>

namespace {

using namespace std::string_view_literals;

bool parserAccepts(std::string_view text) {
  simdjson::dom::parser parser;
  return parser.parse(text.data(), text.size()).error() == simdjson::SUCCESS;
}

TEST(JsonFault, TellsWhereAndWhy) {
  const std::string_view cases[][2] = {
      {"", "line 1, column 1 (byte 0): expected a value, but the text ends"},
      {"{\n  \"a\": 1,\n  \"b\" 2\n}", "line 3, column 7 (byte 18): expected ':' after the key"},
      {"[1,]", "line 1, column 4 (byte 3): expected a value"},
      {"[1 2]", "line 1, column 4 (byte 3): expected ',' or ']'"},
      {"{\"a\":1,}", "line 1, column 8 (byte 7): expected a key in quotation marks"},
      {"{\"a\":1", "line 1, column 7 (byte 6): expected ',' or '}', but the text ends"},
      {"[01]", "line 1, column 2 (byte 1): a number must not begin with 0"},
      {"[-]", "line 1, column 2 (byte 1): expected a value"},
      {"[1.]", "line 1, column 4 (byte 3): expected a digit after the decimal point"},
      {"[1e+]", "line 1, column 5 (byte 4): expected a digit in the exponent"},
      {"[\r\n0,\r\n-1e999]", "line 3, column 1 (byte 7): the number is beyond the range of a double"},
      {"\"abc", "line 1, column 5 (byte 4): the string is not closed, but the text ends"},
      {"\"a\x01\"", "line 1, column 3 (byte 2): a control character must be escaped in a string"},
      {"\"\\x\"", "line 1, column 2 (byte 1): unknown escape in a string"},
      {"\"\\u12G4\"", "line 1, column 2 (byte 1): expected four hexadecimal digits after \\u"},
      {"\"\\ud800x\"", "line 1, column 2 (byte 1): half of a surrogate pair stands alone"},
      {"\"\xC3\xA9\xFF\"", "line 1, column 4 (byte 3): the text is not valid UTF-8"},
      {"[] []", "line 1, column 4 (byte 3): expected the end of the text after the value"},
  };
  for (const auto& [text, expected] : cases) {
    SCOPED_TRACE(text);
    const auto fault = scanJson(text);
    ASSERT_TRUE(fault);
    EXPECT_EQ(fault->describe(text), expected);
  }
}

TEST(JsonFault, FindsOneExactlyWhereTheParserGivesUp) {
  const std::string_view texts[] = {
      "null", " true\t", "-0", "0.0e-0", "1E+2", "[]", "{}", "[[],{}]", "{\"a\":{\"b\":[1,2.5,-3e4]}}", "1e308",
      "1e309", "-1e400", "1e-999", "0e999", "1.7976931348623158e308", "1.7976931348623159e308", "4.9e-324", "1e-324",
      "+1", ".5", "1.e5", "1e", "0x10", "00", "-01", "1_0", "NaN", "Infinity", "tru", "truex", "nullnull",
      "[true false]", "'a'", "{a:1}", "{\"a\"}", "{\"a\":}", "{1:2}", "{\"a\":1,\"a\":2}", "[1", "]", "{]", "[,1]",
      "[1,,2]", "// no\n1", "\"\\\"\\\\\\/\\b\\f\\n\\r\\t\"", "\"\\v\"", "\"\\\"", "\"\t\"", "\"\x7F\"", "\"\0\""sv,
      "1\0"sv, "\0"sv,
      // escapes of UTF-16 code units, alone, in pairs and in the wrong order
      "\"\\u0000\"", "\"\\uFFFF\"", "\"\\ud83d\\ude00\"", "\"\\ud83d\"", "\"\\ude00\"", "\"\\ude00\\ud83d\"",
      "\"\\ud83d\\ud83d\"", "\"\\ud83d\\u0041\"", "\"\\ud83d\\n\"", "\"\\ud83d\\ude0\"", "\"\\u123\"", "\"\\u+123\"",
      "\"\\U0041\"",
      // UTF-8: shortest and longest forms, overlong ones, surrogates, beyond the last character, cut off
      "\"\xC2\x80\xDF\xBF\"", "\"\xE0\xA0\x80\xEF\xBF\xBF\"", "\"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF\"", "\"\x80\"",
      "\"\xC1\xBF\"", "\"\xE0\x9F\xBF\"", "\"\xED\xA0\x80\"", "\"\xED\x9F\xBF\"", "\"\xF0\x8F\xBF\xBF\"",
      "\"\xF4\x90\x80\x80\"", "\"\xF5\x80\x80\x80\"", "\"\xC3\"", "\"\xE2\x82\"", "\"\xF0\x9F\x98\"", "[\xC3\xA9]",
      "\"\xE2\x28\xA1\"", "\xEF\xBB\xBF[]"};
  for (const std::string_view text : texts) {
    EXPECT_EQ(!scanJson(text), parserAccepts(text)) << testing::PrintToString(text);
  }
}

/// Breaks a good text in random places: most results are no JSON, some still are.
TEST(JsonFault, AgreesWithTheParserOnBrokenTexts) {
  const std::string good = "{\"n\\u00e9\": [-0.5e+3, 10, 123456789012345],\n \"\xCE\xB8\": {\"t\": true, \"o\": null}}";
  const std::string_view spare = "{}[],:\"\\0123456789.eE+-truefalsn \n\x01\x80\xC3\xE2\xF0";
  std::mt19937 random(7);
  int accepted = 0;
  for (int i = 0; i < 60000; ++i) {
    std::string text = good;
    for (auto edits = random() % 3 + 1; edits > 0; --edits) {
      const std::size_t place = random() % text.size();
      const auto kind = random() % 3;  // overwrites, inserts or erases
      text.replace(place, kind != 1, kind != 2, spare[random() % spare.size()]);
    }
    const bool accepts = parserAccepts(text);
    ASSERT_EQ(!scanJson(text), accepts) << testing::PrintToString(text);
    accepted += accepts ? 1 : 0;
  }
  EXPECT_GT(accepted, 3000);
}

}  // namespace
