#include "Platform/JsonReader.h"

#include <cmath>

#include "Platform/JsonFault.h"
#include "Platform/NumberText.h"

namespace {

using simdjson::ondemand::json_type;

std::string whatIs(JsonValue json) {
  json_type type{};
  if (json.type().get(type) != simdjson::SUCCESS) return "something else";
  switch (type) {
    case json_type::array:
      return "an array";
    case json_type::object:
      return "an object";
    case json_type::number: {
      double number = 0;
      if (json.get_double().get(number) != simdjson::SUCCESS) return "a number";
      std::string text = "the number ";
      appendJsonNumber(text, number);
      return text;
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

/// Parts of the text that nobody reads still have to be JSON.
void requireJson(std::string_view part) {
  if (const auto scan = scanJson(part)) throw JsonError(scan->reason);
}

}  // namespace

JsonError JsonError::at(std::string place) const {
  JsonError outer(reason_);
  const bool joined = path_.empty() || path_.starts_with('[');
  outer.path_ = std::move(place) + (joined ? "" : ".") + path_;
  outer.text_ = outer.path_ + ": " + reason_;
  return outer;
}

JsonDocument::JsonDocument(std::string text) : text_(std::move(text)) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  if (text_.starts_with(byteOrderMark)) start_ = byteOrderMark.size();
  text_.reserve(text_.size() + simdjson::SIMDJSON_PADDING);
}

JsonValue JsonDocument::begin() {
  document_ = jsonResult(parser_.iterate(text_.data() + start_, text_.size() - start_, text_.capacity() - start_));
  JsonValue root;
  if (document_.get_value().get(root) != simdjson::SUCCESS) throw JsonError("expected an object or an array");
  return root;
}

void JsonDocument::end() {
  const bool atEnd = document_.current_location().error() == simdjson::OUT_OF_BOUNDS;
  if (!atEnd) throw JsonError("there is more after the value");
}

void JsonDocument::requireJson() const {
  auto fault = scanJson(std::string_view(text_).substr(start_));
  if (!fault) return;
  fault->offset += start_;
  throw JsonError("not valid JSON at " + fault->describe(text_));
}

void throwUnexpected(std::string_view expectedType, JsonValue json) {
  throw JsonError("expected " + std::string(expectedType) + ", found " + whatIs(json));
}

void readWholeNumber(JsonValue json, std::int64_t& value) {
  constexpr double limit = 9223372036854775808.0;  // 2^63
  JsonValue number = json;
  double real = 0;
  if (number.get_double().get(real) != simdjson::SUCCESS || std::trunc(real) != real || real < -limit || real >= limit)
    throwUnexpected("a whole number", json);
  value = static_cast<std::int64_t>(real);
}

void readJson(JsonValue json, std::string& value) {
  std::string_view text;
  if (json.get_string().get(text) != simdjson::SUCCESS) throwUnexpected("a text", json);
  value = text;
}

void skipJson(JsonValue json) {
  double number = 0;
  bool truth = false;
  std::string text;
  switch (jsonResult(json.type())) {
    case json_type::array:
      return ::requireJson(jsonResult(jsonArray(json).raw_json()));
    case json_type::object:
      return ::requireJson(jsonResult(jsonObject(json).raw_json()));
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
