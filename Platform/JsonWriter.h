#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Writes one JSON value as indented text, keys in the order given. A number that is not finite becomes null, since
/// JSON has no word for it; who must not lose it checks before.
class JsonWriter {
 public:
  void beginObject() { open('{', '}'); }
  void beginArray() { open('[', ']'); }
  /// Ends the innermost object or array.
  void end();

  void key(std::string_view name);
  void value(double number);
  void value(std::int64_t number);
  void value(bool truth);
  /// `text` must be valid UTF-8.
  void value(std::string_view text);

  /// An array of numbers or booleans, `perLine` of them on each line (a node's coordinates, say).
  void table(std::span<const double> numbers, std::size_t perLine);
  void table(const std::vector<bool>& truths, std::size_t perLine);

  /// The text written so far, which ends with a newline once the value is complete.
  [[nodiscard]] std::string take();
  void reserve(std::size_t bytes) { text_.reserve(bytes); }

 private:
  void open(char opening, char closing);
  void beforeValue();
  void newLine();
  void number(double number);
  void quoted(std::string_view text);
  template <class Values>
  void rows(const Values& values, std::size_t perLine);

  std::string text_;
  std::string closings_;
  std::size_t indentation_ = 0;
  bool empty_ = true;      // nothing stands in the innermost object or array yet
  bool afterKey_ = false;  // a key waits for its value
};
