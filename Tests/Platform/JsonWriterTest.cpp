#include "Platform/JsonWriter.h"

#include <gtest/gtest.h>

#include <limits>

#include "Platform/JsonReader.h"

namespace {

using namespace std::string_view_literals;

TEST(JsonWriter, IndentsWhatIsNested) {
  JsonWriter json;
  json.beginObject();
  json.key("empty array");
  json.beginArray();
  json.end();
  json.key("empty object");
  json.beginObject();
  json.end();
  json.key("items");
  json.beginArray();
  json.value(true);
  json.value(std::int64_t{-7});
  json.value(0.5);
  json.value(std::numeric_limits<double>::quiet_NaN());
  json.beginObject();
  json.key("dθ");
  json.value("text"sv);
  json.end();
  json.end();
  json.key("numbers");
  json.table(std::vector<double>{1, -0.0, 2.5, 1e300, std::numeric_limits<double>::infinity()}, 3);
  json.key("truths");
  json.table(std::vector<bool>{true, false}, 2);
  json.key("nothing");
  json.table(std::vector<double>{}, 3);
  json.end();
  EXPECT_EQ(json.take(),
            "{\n"
            "  \"empty array\": [],\n"
            "  \"empty object\": {},\n"
            "  \"items\": [\n"
            "    true,\n"
            "    -7,\n"
            "    0.5,\n"
            "    null,\n"
            "    {\n"
            "      \"dθ\": \"text\"\n"
            "    }\n"
            "  ],\n"
            "  \"numbers\": [\n"
            "    1, -0.0, 2.5,\n"
            "    1e+300, null\n"
            "  ],\n"
            "  \"truths\": [\n"
            "    true, false\n"
            "  ],\n"
            "  \"nothing\": []\n"
            "}\n");
}

TEST(JsonWriter, EscapesTextSoThatItReadsBack) {
  std::string every;
  for (char c = 0; c < 127; ++c) every += c;
  every += "\x7F\xC2\x80 dθ \xF0\x9F\x98\x80";
  JsonWriter json;
  json.beginObject();
  json.key("\"\\\n");
  json.value(every);
  json.end();
  const std::string text = json.take();
  EXPECT_NE(text.find("\\u0000\\u0001"), std::string::npos);
  EXPECT_NE(text.find("\\u001f !\\\"#"), std::string::npos);

  std::string back;
  static constexpr std::array members{
      JsonMember<std::string>{"\"\\\n", [](JsonValue value, std::string& to) { readJson(value, to); }}};
  JsonDocument(text).read([&back](JsonValue root) { readJsonObject(root, back, members); });
  EXPECT_EQ(back, every);
}

TEST(JsonWriter, HandsALongTextOverInPieces) {
  const std::vector<double> numbers(200000, 0.1);
  JsonWriter whole;
  whole.table(numbers, 3);
  std::string joined;
  int pieces = 0;
  JsonWriter inPieces([&](std::string_view piece) {
    joined += piece;
    ++pieces;
  });
  inPieces.table(numbers, 3);
  EXPECT_GT(pieces, 2);
  EXPECT_EQ(joined, whole.take());
}

}  // namespace
