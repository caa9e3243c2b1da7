#pragma once

#include <simdjson.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// Why a JSON text cannot be read. The message says what and where ("F_I[5]: expected a number, found null"). It never
/// leaves the functions that read a document; those return a Failure.
class JsonError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;

  /// The same error seen from one level further out: `where` is a key or an index in brackets.
  [[nodiscard]] JsonError within(std::string_view where) const;
};

/// A parsed JSON text.
class JsonDocument {
 public:
  /// Throws JsonError, with line, column and byte, for text that is not JSON. A leading byte order mark is skipped.
  explicit JsonDocument(std::string text);

  [[nodiscard]] simdjson::dom::element root() const { return root_; }

 private:
  [[nodiscard]] simdjson::error_code parse();

  std::string text_;
  simdjson::dom::parser parser_;
  simdjson::dom::element root_;
};

/// The typed readers throw JsonError for a value of another type. A whole number may be written with a fraction of zero
/// or an exponent ("3", "3.0", "3e0"); a boolean is no number.
void readJson(simdjson::dom::element element, double& value);
void readJson(simdjson::dom::element element, std::int64_t& value);
void readJson(simdjson::dom::element element, bool& value);
void readJson(simdjson::dom::element element, std::string& value);

/// Throws JsonError unless `element` is an object or array, respectively.
[[nodiscard]] simdjson::dom::object jsonObject(simdjson::dom::element element);
[[nodiscard]] simdjson::dom::array jsonArray(simdjson::dom::element element);

/// Calls `readItem(item)` for each item of an array; an error is told with the item's index.
template <class ReadItem>
void readJsonItems(simdjson::dom::element element, ReadItem&& readItem) {
  std::size_t index = 0;
  for (const simdjson::dom::element item : jsonArray(element)) {
    try {
      readItem(item);
    } catch (const JsonError& error) {
      throw error.within("[" + std::to_string(index) + "]");
    }
    ++index;
  }
}

template <class Value>
void readJson(simdjson::dom::element element, std::vector<Value>& values) {
  values.clear();
  readJsonItems(element, [&](simdjson::dom::element item) {
    Value value{};
    readJson(item, value);
    values.push_back(value);
  });
}
