#include "Platform/JsonWriter.h"

#include <gtest/gtest.h>

#include <array>

using namespace gavrel;

namespace {

constexpr std::array<std::string_view, 2> names{"i", "dθ\n"};

/// `count` objects and a table of as many rows, by one thread.
std::string writeSingly(std::int64_t count) {
  JsonWriter json;
  json.beginObject();
  json.key("items");
  json.beginArray();
  for (std::int64_t i = 0; i < count; ++i) {
    json.beginObject();
    json.key(names[0]);
    json.value(i);
    json.key(names[1]);
    json.value(0.1 * static_cast<double>(i));
    json.end();
  }
  json.end();
  json.end();
  return json.take();
}

void writeTogether(JsonWriter& json, std::int64_t count) {
  json.beginObject();
  json.key("items");
  const auto keys = json.itemKeys(names);
  json.items(static_cast<std::size_t>(count), [&keys](JsonWriter& item, std::size_t i) {
    item.beginObject();
    item.itemKey(keys[0]);
    item.value(static_cast<std::int64_t>(i));
    item.itemKey(keys[1]);
    item.value(0.1 * static_cast<double>(i));
    item.end();
  });
  json.end();
}

TEST(JsonWriter, WritesItemsTogetherAsSingly) {
  for (const std::int64_t count : {0, 1, 1023, 1024, 1025, 2048, 50000}) {
    const std::string expected = writeSingly(count);
    JsonWriter kept;
    writeTogether(kept, count);
    EXPECT_EQ(kept.take(), expected) << count;
    std::string passedOn;
    JsonWriter passing([&passedOn](std::string_view piece) { passedOn += piece; });
    writeTogether(passing, count);
    EXPECT_EQ(passedOn, expected) << count;
  }
}

TEST(JsonWriter, BreaksTablesAfterEachRow) {
  const std::vector<double> numbers(3 * 1024 + 5, 0.5);
  JsonWriter json;
  json.table(numbers, 3);
  std::string expected = "[";
  for (std::size_t i = 0; i < numbers.size(); ++i) expected += i == 0 ? "\n  0.5" : i % 3 == 0 ? ",\n  0.5" : ", 0.5";
  EXPECT_EQ(json.take(), expected + "\n]\n");
}

}  // namespace
