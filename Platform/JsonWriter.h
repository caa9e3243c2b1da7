#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace gavrel {

/// Writes one JSON value as indented text, keys in the order given. A number that is not finite becomes null, since
/// JSON cannot express it; a caller that must not lose such numbers checks for them first.
class JsonWriter {
 public:
  /// Keeps the text for `take`.
  JsonWriter() = default;
  /// Passes the text to `sink` piece by piece, one at a time, though perhaps in several threads; the last one when the
  /// value is complete.
  explicit JsonWriter(std::function<void(std::string_view)> sink) : sink_(std::move(sink)) {}

  void beginObject() { open('{', '}'); }
  void beginArray() { open('[', ']'); }
  /// Ends the innermost object or array.
  void end();

  void key(std::string_view name);
  void value(double number);
  void value(std::int64_t number);
  void value(bool truth);
  /// `text` must be valid UTF-8. Control characters are escaped.
  void value(std::string_view text);

  /// An array of `count` items: `writeItem(json, i)` writes one. Those of long arrays are written by several threads,
  /// each with a writer of its own.
  template <class WriteItem>
  void items(std::size_t count, WriteItem&& writeItem) {
    inParallel(count, [&writeItem](JsonWriter& json, std::size_t first, std::size_t last) {
      for (std::size_t i = first; i < last; ++i) writeItem(json, i);
    });
  }

  /// The keys of the objects in an array that is written next, each with all that stands before its value: made once
  /// for many objects. To be written by `itemKey`, in the same order.
  [[nodiscard]] std::vector<std::string> itemKeys(std::span<const std::string_view> names) const;
  void itemKey(const std::string& key) {
    text_ += key;
    empty_ = false;
    afterKey_ = true;
  }

  /// An array of numbers or booleans, `perLine` of them on each line (a node's coordinates, say).
  void table(std::span<const double> numbers, std::size_t perLine);
  void table(const std::vector<bool>& truths, std::size_t perLine);

  /// The text, which ends with a newline once the value is complete.
  [[nodiscard]] std::string take();

 private:
  using WriteRange = std::function<void(JsonWriter& json, std::size_t first, std::size_t last)>;

  void inParallel(std::size_t count, const WriteRange& writeRange);
  void open(char opening, char closing);
  void beforeValue();
  void handOver();
  void newLine();
  void number(double number);
  void quoted(std::string_view text);
  template <class Values>
  void rows(const Values& values, std::size_t perLine);

  std::function<void(std::string_view)> sink_;
  std::string text_;
  std::string closings_;
  std::size_t indentation_ = 0;
  bool empty_ = true;      // nothing stands in the innermost object or array yet
  bool afterKey_ = false;  // the last thing written was a key
};

}  // namespace gavrel
