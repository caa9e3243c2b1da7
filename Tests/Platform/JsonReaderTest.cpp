#include "Platform/JsonReader.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>

#include "Tests/Platform/Spellings.h"
#include "Tests/Text.h"

using namespace gavrel;

namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// Reads an array of such values; returns why not all could be read.
template <class Value>
std::string readList(const std::string& text, std::vector<Value>& values) {
  try {
    JsonDocument(text).read([&values](JsonValue root) { readJson(root, values); });
  } catch (const JsonError& error) {
    return error.what();
  }
  return "";
}

template <class Value>
std::string fault(const std::string& text) {
  std::vector<Value> values;
  return readList(text, values);
}

struct Record {
  double number = 0;
  std::vector<bool> truths;
};

std::string faultOfRecord(const std::string& text, Record record = {}) {
  constexpr std::array members{
      JsonMember<Record>{"number", [](JsonValue json, Record& to) { readJson(json, to.number); }},
      JsonMember<Record>{"truths", [](JsonValue json, Record& to) { readJson(json, to.truths); }, false}};
  try {
    JsonDocument(text).read([&](JsonValue root) { readJsonObject(root, record, members); });
  } catch (const JsonError& error) {
    return error.what();
  }
  return "";
}

TEST(JsonReader, RoundsToTheNearestDouble) {
  Spellings spellings;
  std::string list;
  std::vector<double> nearest, read;
  while (nearest.size() < 20000) {
    const std::string spelling = spellings.next();
    const double number = std::strtod(spelling.c_str(), nullptr);  // which rounds correctly
    if (std::isinf(number)) {
      EXPECT_THAT(fault<double>("[" + spelling + "]"), HasSubstr("beyond the range of a double"));
      continue;
    }
    nearest.push_back(number);
    list += (list.empty() ? "[" : ", ") + spelling;
  }
  ASSERT_EQ(readList(list + "]", read), "");
  ASSERT_EQ(read.size(), nearest.size());
  for (std::size_t i = 0; i < read.size(); ++i)
    ASSERT_EQ(std::bit_cast<std::uint64_t>(read[i]), std::bit_cast<std::uint64_t>(nearest[i])) << nearest[i];
}

TEST(JsonReader, ReadsWholeNumbersOfEveryNotation) {
  const auto whole = words(
      "3.0 3  -3e2 -300  -0 0  9223372036854775807 9223372036854775807  -9.223372036854775808e18 -9223372036854775808 "
      "9007199254740993.0 9007199254740993  90071992547409930.00e-1 9007199254740993  0.0e-99999999999999999999 0 "
      "0.000000009223372036854775807E+27 9223372036854775807  3e0000000000000000000000 3");
  for (std::size_t i = 0; i < whole.size(); i += 2) {
    std::vector<std::int64_t> read;
    EXPECT_EQ(readList("[" + whole[i] + "]", read), "");
    EXPECT_THAT(read, testing::ElementsAre(std::stoll(whole[i + 1])));
  }
  for (const auto& text :
       words("3.5 1e-1 9223372036854775808 9.223372036854775808e18 -9.223372036854778e18 100000000000000000000 "
             "-9223372036854775809 -9223372036854775809.0 9007199254740993.5 1e-400 3.00000000000000000000001 "
             "10000000000000000000e1 true \"3\" null"))
    EXPECT_THAT(fault<std::int64_t>("[" + text + "]"), StartsWith("[0]: expected a whole number, found "));
}

TEST(JsonReader, TellsWhatStandsWhereInsteadOfWhat) {
  const char* const numbers[][2] = {{"[1, true]", "[1]: expected a number, found true"},
                                    {"[false]", "[0]: expected a number, found false"},
                                    {"[null ]", "[0]: expected a number, found null"},
                                    {"[\"1\"]", "[0]: expected a number, found a text"},
                                    {"[[1]]", "[0]: expected a number, found an array"},
                                    {"[{}]", "[0]: expected a number, found an object"},
                                    {"{\"a\": 1}", "expected an array, found an object"},
                                    {"1.5", "expected an object or an array"},
                                    {"[1,\n,]", "not valid JSON at line 2, column 1 (byte"},
                                    {"[true 1]", "not valid JSON at line 1, column 7"},
                                    {"\xEF\xBB\xBF[1,]", "not valid JSON at line 1, column 7 (byte 6)"},
                                    {"[1] 2", "not valid JSON at line 1, column 5"}};
  for (const auto& [text, reason] : numbers) EXPECT_THAT(fault<double>(text), StartsWith(reason)) << text;
  EXPECT_EQ(fault<std::int64_t>("[1.5 ]"), "[0]: expected a whole number, found the number 1.5");
  EXPECT_EQ(fault<std::int64_t>("[" + std::string(41, '9') + "]"), "[0]: expected a whole number, found a number");
  EXPECT_EQ(fault<bool>("[true, 0]"), "[1]: expected true or false, found the number 0");

  EXPECT_EQ(faultOfRecord("\xEF\xBB\xBF"
                          R"({"other": [{"number": [null, true, "\n"]}], "n\u0075mber": 3, "truths": [true]})"),
            "");
  const char* const records[][2] = {
      {"[]", "expected an object, found an array"},
      {R"({"truths": []})", "\"number\" is missing"},
      {R"({"number": 1, "truths": [], "number": 1})", "\"number\" occurs twice"},
      {R"({"number": 1, "truths": [true, 2]})", "truths[1]: expected true or false, found the number 2"},
      {R"({"number": "1"})", "number: expected a number, found a text"}};
  for (const auto& [text, reason] : records) EXPECT_EQ(faultOfRecord(text), reason) << text;
}

TEST(JsonReader, ReadsWhatNobodyNeeds) {
  const auto with = [](const std::string& unread) {
    return faultOfRecord("{\"other\": " + unread + ", \"number\": 1}");
  };
  for (const std::string unread :
       {"[1 2]", "{\"b\"}", "tru", "01", "nul", "\"\\x\"", "[[[]", "{\"b\": nan}", "1e999", "\"\\udc00\""})
    EXPECT_THAT(with(unread), StartsWith("not valid JSON")) << unread;
  for (const auto& [levels, reason] : {std::pair{999, ""}, {1000, "the text is nested too deep"}}) {
    const auto count = static_cast<std::size_t>(levels);
    EXPECT_EQ(with(std::string(count, '[') + "1" + std::string(count, ']')), reason);
  }
}

}  // namespace
