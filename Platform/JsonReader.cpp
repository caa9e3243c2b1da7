#include "Platform/JsonReader.h"

#include <cmath>

#include "Platform/JsonFault.h"
#include "Platform/NumberText.h"

namespace {

std::string whatIs(simdjson::dom::element element) {
  switch (element.type()) {
    case simdjson::dom::element_type::ARRAY:
      return "an array";
    case simdjson::dom::element_type::OBJECT:
      return "an object";
    case simdjson::dom::element_type::INT64:
    case simdjson::dom::element_type::UINT64:
    case simdjson::dom::element_type::DOUBLE: {
      std::string text = "the number ";
      appendJsonNumber(text, element.get_double().value_unsafe());
      return text;
    }
    case simdjson::dom::element_type::STRING:
      return "a text";
    case simdjson::dom::element_type::BOOL:
      return element.get_bool().value_unsafe() ? "true" : "false";
    case simdjson::dom::element_type::NULL_VALUE:
      return "null";
  }
  return "something else";
}

JsonError expected(std::string_view type, simdjson::dom::element element) {
  return JsonError("expected " + std::string(type) + ", found " + whatIs(element));
}

/// The text with an exponent after each whole number that no 64-bit integer holds, so that the parser takes it for the
/// double that it is. Other programs write 1e20 as 100000000000000000000.
std::string withExponents(std::string_view text, const std::vector<std::size_t>& numberEnds) {
  std::string result;
  result.reserve(text.size() + 2 * numberEnds.size() + simdjson::SIMDJSON_PADDING);
  std::size_t copied = 0;
  for (const std::size_t end : numberEnds) {
    result += text.substr(copied, end - copied);
    result += "e0";
    copied = end;
  }
  return result += text.substr(copied);
}

}  // namespace

JsonError JsonError::within(std::string_view where) const {
  const std::string_view inner = what();
  const bool joined = inner.starts_with('[') || inner.starts_with('.');
  return JsonError(std::string(where) + (joined ? "" : ": ") + std::string(inner));
}

JsonDocument::JsonDocument(std::string text) : text_(std::move(text)) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  if (text_.starts_with(byteOrderMark)) text_.erase(0, byteOrderMark.size());
  if (parse() == simdjson::SUCCESS) return;

  const JsonScan scan = scanJson(text_);
  if (scan.fault) throw JsonError("not valid JSON at " + scan.fault->describe(text_));
  text_ = withExponents(text_, scan.wideIntegerEnds);
  if (const auto error = parse(); error != simdjson::SUCCESS) {
    throw JsonError(std::string("the JSON text cannot be taken in: ") + simdjson::error_message(error));
  }
}

simdjson::error_code JsonDocument::parse() {
  text_.reserve(text_.size() + simdjson::SIMDJSON_PADDING);
  return parser_.parse(text_.data(), text_.size(), false).get(root_);
}

void readJson(simdjson::dom::element element, double& value) {
  if (element.get_double().get(value) != simdjson::SUCCESS) throw expected("a number", element);
}

void readJson(simdjson::dom::element element, std::int64_t& value) {
  if (element.get_int64().get(value) == simdjson::SUCCESS) return;
  constexpr double limit = 9223372036854775808.0;  // 2^63
  double real = 0;
  if (element.get_double().get(real) != simdjson::SUCCESS || std::trunc(real) != real || real < -limit || real >= limit)
    throw expected("a whole number", element);
  value = static_cast<std::int64_t>(real);
}

void readJson(simdjson::dom::element element, bool& value) {
  if (element.get_bool().get(value) != simdjson::SUCCESS) throw expected("true or false", element);
}

void readJson(simdjson::dom::element element, std::string& value) {
  std::string_view text;
  if (element.get_string().get(text) != simdjson::SUCCESS) throw expected("a text", element);
  value = text;
}

simdjson::dom::object jsonObject(simdjson::dom::element element) {
  simdjson::dom::object object;
  if (element.get_object().get(object) != simdjson::SUCCESS) throw expected("an object", element);
  return object;
}

simdjson::dom::array jsonArray(simdjson::dom::element element) {
  simdjson::dom::array array;
  if (element.get_array().get(array) != simdjson::SUCCESS) throw expected("an array", element);
  return array;
}
