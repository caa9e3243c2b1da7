#pragma once

#include <simdjson.h>

#include <array>
#include <bitset>
#include <cstdint>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

namespace gavrel {

using JsonValue = simdjson::ondemand::value;

/// Why a JSON text cannot be read. The message says what and where ("F_I[5]: expected a number, found null"). It never
/// leaves the functions that read a document; those return a Failure.
class JsonError : public std::exception {
 public:
  explicit JsonError(std::string reason) : reason_(std::move(reason)), text_(reason_) {}

  [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }

  /// The same error, its place extended by the key or the array index under which the value stands.
  [[nodiscard]] JsonError within(std::string_view key) const { return addPlace(std::string(key)); }
  [[nodiscard]] JsonError within(std::size_t index) const { return addPlace("[" + std::to_string(index) + "]"); }

 private:
  [[nodiscard]] JsonError addPlace(std::string place) const;

  std::string path_;
  std::string reason_;
  std::string text_;
};

/// Reads JSON texts whose root is an object or an array, one after the other, in memory that it keeps.
class JsonParser {
 public:
  /// Calls `readRoot(root)`, once. Throws JsonError if any part of the text is not JSON, and what `readRoot` throws.
  /// `readRoot` must read or skip every value that it meets. The text starts at byte `start`; it may be given more
  /// capacity.
  template <class ReadRoot>
  void read(std::string& text, std::size_t start, ReadRoot&& readRoot) {
    readRoot(begin(text, start));
    end();
  }

 private:
  [[nodiscard]] JsonValue begin(std::string& text, std::size_t start);
  void end();

  simdjson::ondemand::parser parser_;
  simdjson::ondemand::document document_;
};

/// A JSON text whose root is an object or an array.
class JsonDocument {
 public:
  /// Takes the text; a leading byte order mark is skipped.
  explicit JsonDocument(std::string text);

  /// Calls `readRoot(root)`, once. Throws JsonError, with line, column and byte, if any part of the text is not JSON;
  /// otherwise a JsonError that `readRoot` throws. `readRoot` must read or skip every value that it meets.
  template <class ReadRoot>
  void read(ReadRoot&& readRoot) {
    try {
      parser_.read(text_, start_, readRoot);
    } catch (const JsonError&) {
      requireJson();
      throw;
    }
  }

 private:
  void requireJson() const;

  std::string text_;
  std::size_t start_ = 0;  // after the byte order mark
  JsonParser parser_;
};

/// Throws JsonError for a value that is not of the expected type.
[[noreturn]] void throwUnexpected(std::string_view expectedType, JsonValue json);

/// Reads any number: as the nearest double, or as a whole number however written ("3.0").
void readAnyNumber(JsonValue json, double& value);
void readAnyNumber(JsonValue json, std::int64_t& value);

/// The typed readers throw JsonError for a value of another type. A whole number may be written with a fraction of zero
/// or an exponent ("3", "3.0", "3e0"); a boolean is not a number.
void readJson(JsonValue json, std::string& value);

/// simdjson 3.0 reads numbers of up to this many characters correctly. Of longer ones it misreads those with a zero
/// before the point and more than 19 significant digits, and refuses exponents of 20 digits.
inline constexpr std::size_t shortNumber = 21;

inline void readJson(JsonValue json, double& value) {
  if (json.raw_json_token().size() > shortNumber || json.get_double().get(value) != simdjson::SUCCESS)
    readAnyNumber(json, value);
}

inline void readJson(JsonValue json, std::int64_t& value) {
  if (json.get_int64().get(value) != simdjson::SUCCESS) readAnyNumber(json, value);
}

inline void readJson(JsonValue json, bool& value) {
  if (json.get_bool().get(value) != simdjson::SUCCESS) throwUnexpected("true or false", json);
}

/// Skips a value; throws JsonError where it is not JSON or nested too deep.
void skipJson(JsonValue json);

/// Throws JsonError unless `json` is an object or array, respectively.
[[nodiscard]] simdjson::ondemand::object jsonObject(JsonValue json);
[[nodiscard]] simdjson::ondemand::array jsonArray(JsonValue json);

/// The value inside a simdjson result; throws JsonError if there is an error instead.
template <class Value>
[[nodiscard]] Value jsonResult(simdjson::simdjson_result<Value> result) {
  if (result.error() != simdjson::SUCCESS) throw JsonError(simdjson::error_message(result.error()));
  return std::move(result).value_unsafe();
}

/// Calls `readItem(item)` for each item of an array; an error gets the item's index.
template <class ReadItem>
void readJsonItems(JsonValue json, ReadItem&& readItem) {
  std::size_t index = 0;
  for (const auto item : jsonArray(json)) {
    try {
      readItem(jsonResult<JsonValue>(item));
    } catch (const JsonError& error) {
      throw error.within(index);
    }
    ++index;
  }
}

template <class Value>
void readJson(JsonValue json, std::vector<Value>& values) {
  values.clear();
  readJsonItems(json, [&values](JsonValue item) {
    Value value{};
    readJson(item, value);
    values.push_back(value);
  });
}

/// A key of an object, and the function that reads its value into the `Target` that the object describes.
template <class Target>
struct JsonMember {
  std::string_view key;
  void (*read)(JsonValue json, Target& target);
  bool required = true;
};

/// Reads an object into `target`. Keys may come in any order; unknown ones are skipped. Throws JsonError for a missing
/// required key and for a repeated one.
template <class Target, std::size_t count>
void readJsonObject(JsonValue json, Target& target, const std::array<JsonMember<Target>, count>& members) {
  std::bitset<count> found;
  std::size_t next = 0;  // files hold the keys in the members' order, so the next one is looked for first
  for (auto result : jsonObject(json)) {
    simdjson::ondemand::field field;  // not by jsonResult, whose copy costs measurable time
    const auto code = std::move(result).get(field);
    if (code != simdjson::SUCCESS) throw JsonError(simdjson::error_message(code));
    if (next == count || !field.key().unsafe_is_equal(members[next].key)) {
      const auto key = jsonResult<std::string_view>(field.unescaped_key());
      for (next = 0; next < count && members[next].key != key;) ++next;
    }
    if (next == count) {
      skipJson(field.value());
      continue;
    }
    const JsonMember<Target>& member = members[next];
    if (found[next]) throw JsonError("\"" + std::string(member.key) + "\" occurs twice");
    found[next] = true;
    ++next;
    try {
      member.read(field.value(), target);
    } catch (const JsonError& error) {
      throw error.within(member.key);
    }
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (members[i].required && !found[i]) throw JsonError("\"" + std::string(members[i].key) + "\" is missing");
  }
}

}  // namespace gavrel
