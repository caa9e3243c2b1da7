#include "Platform/JsonPieces.h"

namespace gavrel {

namespace {

constexpr std::string_view whiteSpace = " \t\r\n";
constexpr std::size_t npos = std::string_view::npos;

}  // namespace

std::optional<std::size_t> JsonPieces::next(std::string& piece) {
  if (!inArray_ && !reachArray()) return std::nullopt;
  takeItems(piece);
  return key_;
}

/// Appends a block to the text; false at its end.
bool JsonPieces::fetch() {
  text_.erase(0, at_);
  at_ = 0;
  const std::size_t size = text_.size();
  text_.resize(size + pieceSize_);
  const std::size_t got = source_(text_.data() + size, pieceSize_);
  text_.resize(size + got);
  return got > 0;
}

/// Moves on to the items of an array of a known key; false at the end of the text.
bool JsonPieces::reachArray() {
  while (at_ < text_.size() || fetch()) {
    const char c = text_[at_++];
    readOuterCharacter(c);
    inArray_ = c == '[' && !inString_ && depth_ == 2 && isAfterKey() && hasItems();
    if (inArray_) return true;
  }
  return false;
}

void JsonPieces::readOuterCharacter(char c) {
  outer_ += c;
  if (inString_) {
    inString_ = escaped_ || c != '"';
    escaped_ = !escaped_ && c == '\\';
  } else if (c == '"') {
    inString_ = true;
    lastString_ = outer_.size() - 1;
  } else if (c == '{' || c == '[') {
    ++depth_;
  } else if (c == '}' || c == ']') {
    --depth_;
  }
}

/// Whether the bracket that the outer text ends with follows a known key.
bool JsonPieces::isAfterKey() {
  const std::string_view tail = std::string_view(outer_).substr(lastString_ + 1);
  for (key_ = 0; key_ < keys_.size(); ++key_) {
    const std::string_view key = keys_[key_];
    if (tail.starts_with(key) && tail.substr(key.size()).starts_with('"') &&
        tail.find_first_not_of(" \t\r\n:", key.size() + 1) == tail.size() - 1)
      return true;
  }
  return false;
}

/// Whether the array that begins here has items, and what they are.
bool JsonPieces::hasItems() {
  std::size_t first = npos;
  while ((first = text_.find_first_not_of(whiteSpace, at_)) == npos)
    if (!fetch()) return false;
  ofObjects_ = text_[first] == '{';
  return text_[first] != ']';
}

void JsonPieces::takeItems(std::string& piece) {
  bool isWhole = false;  // whether the text ends with what is here
  for (std::size_t wanted = pieceSize_;; wanted *= 2) {
    while (text_.size() - at_ < wanted && !isWhole) isWhole = !fetch();
    const std::string_view rest = std::string_view(text_).substr(at_);
    std::size_t size = rest.find(']');
    inArray_ = size == npos;
    if (inArray_) size = findLastComma(rest);
    if (size == npos && !isWhole) continue;
    const std::string_view items = rest.substr(0, size);
    piece.clear();
    piece += '[';
    piece += items;
    piece += ']';
    at_ += items.size() + (inArray_ && size != npos ? 1 : 0);
    inArray_ = inArray_ && size != npos;
    return;
  }
}

/// The last comma that may stand between two items.
std::size_t JsonPieces::findLastComma(std::string_view items) const {
  std::size_t comma = items.rfind(',');
  while (ofObjects_ && comma != npos && comma > 0) {
    const std::size_t before = items.find_last_not_of(whiteSpace, comma - 1);
    if (before == npos || items[before] == '}') break;
    comma = items.rfind(',', comma - 1);
  }
  return comma;
}

}  // namespace gavrel
