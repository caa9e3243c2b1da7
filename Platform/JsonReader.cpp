#include "Platform/JsonReader.h"

#include <new>

#include "Platform/JsonFault.h"
#include "Platform/NumberText.h"
#include "Platform/ShownText.h"

namespace gavrel {

namespace {

using simdjson::ondemand::json_type;

/// The spelling of a value that is neither an array nor an object.
std::string_view readToken(JsonValue json) {
  const std::string_view token = json.raw_json_token();  // and the white space after it
  return token.substr(0, token.find_last_not_of(" \t\r\n") + 1);
}

std::string describeValue(JsonValue json) {
  json_type type{};
  if (json.type().get(type) != simdjson::SUCCESS) return "something else";
  switch (type) {
    case json_type::array:
      return "an array";
    case json_type::object:
      return "an object";
    case json_type::number: {
      constexpr std::size_t longest = 40;
      const std::string_view number = readToken(json);
      return number.size() > longest ? "a number" : "the number " + shownText(number);
    }
    case json_type::string:
      return "a text";
    case json_type::boolean: {
      bool truth = false;
      if (json.get_bool().get(truth) != simdjson::SUCCESS) return "a word";
      return truth ? "true" : "false";
    }
    case json_type::null:
      return "null";
  }
  return "something else";
}

/// Parts of the text that are not used must be JSON, too, so each value in them is read.
void skip(JsonValue json, int levels) {
  if (levels == 0) throw JsonError("the text is nested too deep");
  double number = 0;
  bool truth = false;
  std::string text;
  switch (jsonResult(json.type())) {
    case json_type::array:
      for (const auto item : jsonArray(json)) skip(jsonResult<JsonValue>(item), levels - 1);
      return;
    case json_type::object:
      for (auto member : jsonObject(json)) {
        auto field = jsonResult<simdjson::ondemand::field>(member);
        static_cast<void>(jsonResult<std::string_view>(field.unescaped_key()));
        skip(field.value(), levels - 1);
      }
      return;
    case json_type::number:
      return readJson(json, number);
    case json_type::string:
      return readJson(json, text);
    case json_type::boolean:
      return readJson(json, truth);
    case json_type::null:
      if (!jsonResult(json.is_null())) throwUnexpected("a value", json);
  }
}

}  // namespace

JsonError JsonError::addPlace(std::string place) const {
  JsonError outer(reason_);
  const bool joined = path_.empty() || path_.starts_with('[');
  outer.path_ = std::move(place) + (joined ? "" : ".") + path_;
  outer.text_ = outer.path_ + ": " + reason_;
  return outer;
}

JsonDocument::JsonDocument(std::string text) : text_(std::move(text)) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  if (text_.starts_with(byteOrderMark)) start_ = byteOrderMark.size();
}

JsonValue JsonParser::begin(std::string& text, std::size_t start) {
  text.reserve(text.size() + simdjson::SIMDJSON_PADDING);
  const auto fault = parser_.iterate(text.data() + start, text.size() - start, text.capacity() - start).get(document_);
  if (fault == simdjson::MEMALLOC) throw std::bad_alloc();
  if (fault != simdjson::SUCCESS) throw JsonError(simdjson::error_message(fault));
  JsonValue root;
  if (document_.get_value().get(root) != simdjson::SUCCESS) throw JsonError("expected an object or an array");
  return root;
}

void JsonParser::end() {
  const bool atEnd = document_.current_location().error() == simdjson::OUT_OF_BOUNDS;
  if (!atEnd) throw JsonError("there is more after the value");
}

void JsonDocument::requireJson() const {
  if (const auto fault = findJsonFault(text_)) throw JsonError("not valid JSON at " + fault->describe(text_));
}

void throwUnexpected(std::string_view expectedType, JsonValue json) {
  throw JsonError("expected " + std::string(expectedType) + ", found " + describeValue(json));
}

void readAnyNumber(JsonValue json, double& value) {
  const auto number = parseJsonNumber(readToken(json));
  if (!number) throwUnexpected("a number", json);
  value = *number;
}

void readAnyNumber(JsonValue json, std::int64_t& value) {
  const auto number = parseJsonWholeNumber(readToken(json));
  if (!number) throwUnexpected("a whole number", json);
  value = *number;
}

void readJson(JsonValue json, std::string& value) {
  std::string_view text;
  if (json.get_string().get(text) != simdjson::SUCCESS) throwUnexpected("a text", json);
  value = text;
}

void skipJson(JsonValue json) {
  constexpr int deepest = 1000;
  skip(json, deepest);
}

simdjson::ondemand::object jsonObject(JsonValue json) {
  simdjson::ondemand::object object;
  if (json.get_object().get(object) != simdjson::SUCCESS) throwUnexpected("an object", json);
  return object;
}

simdjson::ondemand::array jsonArray(JsonValue json) {
  simdjson::ondemand::array array;
  if (json.get_array().get(array) != simdjson::SUCCESS) throwUnexpected("an array", json);
  return array;
}

}  // namespace gavrel
