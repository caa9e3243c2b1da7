#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace gavrel {

/// Cuts a JSON text, as it comes in, into pieces that several threads can read: it takes the items out of the arrays
/// that stand under known keys of the root object. What is left, with empty arrays in their places, is the outer text.
///
/// The cuts are made where commas and brackets promise an item's end, which a text can feign. But if the outer text and
/// all pieces are JSON, and each piece has an item, then the whole text is JSON and holds exactly these items; in all
/// other cases it has to be read as a whole.
class JsonPieces {
 public:
  /// Fills a block with the next bytes of the text; returns their number, 0 at the end.
  using Source = std::function<std::size_t(char* block, std::size_t size)>;

  /// Pieces have about `pieceSize` bytes, more where an item is longer. `keys` must outlive this object.
  JsonPieces(Source source, std::span<const std::string_view> keys, std::size_t pieceSize)
      : source_(std::move(source)), keys_(keys), pieceSize_(pieceSize) {}

  /// Makes `piece` the next items, in brackets, and returns the position of their key; nothing at the end of the text.
  [[nodiscard]] std::optional<std::size_t> next(std::string& piece);

  /// The outer text, once there are no more pieces.
  [[nodiscard]] std::string& outer() { return outer_; }

 private:
  [[nodiscard]] bool fetch();
  [[nodiscard]] bool reachArray();
  void readOuterCharacter(char c);
  [[nodiscard]] bool isAfterKey();
  [[nodiscard]] bool hasItems();
  void takeItems(std::string& piece);
  [[nodiscard]] std::size_t findLastComma(std::string_view items) const;

  Source source_;
  std::span<const std::string_view> keys_;
  std::size_t pieceSize_;

  std::string text_;    // what has come in and is not used up
  std::size_t at_ = 0;  // where the rest of it begins
  bool inArray_ = false;
  std::size_t key_ = 0;  // of the array
  bool ofObjects_ = false;

  std::string outer_;
  int depth_ = 0;
  bool inString_ = false;
  bool escaped_ = false;
  std::size_t lastString_ = 0;  // where the last string begins in the outer text
};

}  // namespace gavrel
