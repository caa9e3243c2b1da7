#include "Platform/JsonFault.h"

#include <gtest/gtest.h>
#include <simdjson.h>

#include <random>
#include <string>

using namespace gavrel;

namespace {

using namespace std::string_view_literals;

bool parserAccepts(std::string_view text) {
  simdjson::dom::parser parser;
  return parser.parse(text.data(), text.size()).error() == simdjson::SUCCESS;
}

TEST(JsonFault, TellsWhereAndWhy) {
  const std::string_view cases[][2] = {
      {"", "line 1, column 1 (byte 0): the document is empty (the text ends here)"},
      {"{\n  \"a\": 1,\n  \"b\" 2\n}", "line 3, column 7 (byte 18): missing a colon after a name of object member"},
      {"[1,]", "line 1, column 4 (byte 3): invalid value"},
      {"[1 2]", "line 1, column 4 (byte 3): missing a comma or ']' after an array element"},
      {"{\"a\":1,}", "line 1, column 8 (byte 7): missing a name for object member"},
      {"{\"a\":1", "line 1, column 7 (byte 6): missing a comma or '}' after an object member (the text ends here)"},
      {"[01]", "line 1, column 2 (byte 1): a number must not begin with 0"},
      {"[-]", "line 1, column 2 (byte 1): invalid value"},
      {"[0, tru]", "line 1, column 5 (byte 4): invalid value"},
      {"[1.]", "line 1, column 4 (byte 3): miss fraction part in number"},
      {"[1e+]", "line 1, column 5 (byte 4): miss exponent in number"},
      {"[\r\n0,\r\n-1e999]", "line 3, column 1 (byte 7): the number is beyond the range of a double"},
      {"1e999", "line 1, column 1 (byte 0): the number is beyond the range of a double"},
      {"\"abc", "line 1, column 5 (byte 4): missing a closing quotation mark in string (the text ends here)"},
      {"\"a\x01\"", "line 1, column 3 (byte 2): a control character must be escaped in a string"},
      {"\"\\x\"", "line 1, column 2 (byte 1): invalid escape character in string"},
      {"\"\\u12G4\"", "line 1, column 2 (byte 1): incorrect hex digit after \\u escape in string"},
      {"\"\\ud800x\"", "line 1, column 2 (byte 1): the surrogate pair in string is invalid"},
      {"\"a\\udc00x\"", "line 1, column 3 (byte 2): the surrogate pair in string is invalid"},
      {"\"\xC3\xA9\xFF\"", "line 1, column 4 (byte 3): invalid encoding in string"},
      {"[] []", "line 1, column 4 (byte 3): the document root must not be followed by other values"},
      {"[]\0"sv, "line 1, column 3 (byte 2): a zero byte"},
  };
  for (const auto& [text, expected] : cases) {
    SCOPED_TRACE(text);
    const auto fault = findJsonFault(text);
    ASSERT_TRUE(fault);
    EXPECT_EQ(fault->describe(text), expected);
  }
}

TEST(JsonFault, FindsOneExactlyWhereTheReaderGivesUp) {
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
      "\"\xE2\x28\xA1\""};
  for (const std::string_view text : texts) {
    EXPECT_EQ(!findJsonFault(text), parserAccepts(text)) << testing::PrintToString(text);
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
    ASSERT_EQ(!findJsonFault(text), accepts) << testing::PrintToString(text);
    accepted += accepts ? 1 : 0;
  }
  EXPECT_GT(accepted, 3000);
}

}  // namespace
