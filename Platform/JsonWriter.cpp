#include "Platform/JsonWriter.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Platform/NumberText.h"
#include "Platform/OrderedText.h"

namespace gavrel {

namespace {

constexpr std::size_t indentationStep = 2;
constexpr std::size_t largestPiece = std::size_t{256} * 1024;
constexpr std::size_t itemsPerPiece = 1024;  // of arrays that several threads write

/// Whether a byte is none of the printable ASCII characters that stand for themselves.
bool mayNeedEscape(char c) {
  return c < ' ' || c > '~' || c == '"' || c == '\\';
}

}  // namespace

void JsonWriter::newLine() {
  text_ += '\n';
  text_.append(indentation_, ' ');
}

void JsonWriter::handOver() {
  sink_(text_);
  text_.clear();
}

void JsonWriter::beforeValue() {
  if (std::exchange(afterKey_, false) || closings_.empty()) return;
  if (text_.size() >= largestPiece && sink_) handOver();
  if (!std::exchange(empty_, false)) text_ += ',';
  newLine();
}

void JsonWriter::open(char opening, char closing) {
  beforeValue();
  text_ += opening;
  closings_ += closing;
  indentation_ += indentationStep;
  empty_ = true;
}

void JsonWriter::end() {
  indentation_ -= indentationStep;
  if (!std::exchange(empty_, false)) newLine();
  text_ += closings_.back();
  closings_.pop_back();
  if (!closings_.empty()) return;
  text_ += '\n';
  if (sink_) handOver();
}

void JsonWriter::key(std::string_view name) {
  beforeValue();
  quoted(name);
  text_ += ": ";
  afterKey_ = true;
}

std::vector<std::string> JsonWriter::itemKeys(std::span<const std::string_view> names) const {
  JsonWriter item;
  item.indentation_ = indentation_ + indentationStep;
  item.open('{', '}');
  std::vector<std::string> keys;
  for (const std::string_view name : names) {
    item.text_.clear();
    item.key(name);
    item.afterKey_ = false;
    keys.push_back(item.text_);
  }
  return keys;
}

void JsonWriter::number(double number) {
  if (std::isfinite(number)) {
    appendJsonNumber(text_, number);
  } else {
    text_ += "null";
  }
}

void JsonWriter::value(double number) {
  beforeValue();
  this->number(number);
}

void JsonWriter::value(std::int64_t number) {
  beforeValue();
  appendJsonNumber(text_, number);
}

void JsonWriter::value(bool truth) {
  beforeValue();
  text_ += truth ? "true" : "false";
}

void JsonWriter::value(std::string_view text) {
  beforeValue();
  quoted(text);
}

void JsonWriter::quoted(std::string_view text) {
  constexpr std::string_view hexadecimal = "0123456789abcdef";
  text_ += '"';
  while (true) {
    const auto* const special = std::ranges::find_if(text, mayNeedEscape);
    text_.append(text.begin(), special);
    if (special == text.end()) break;
    const char c = *special;
    const auto code = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      text_ += '\\';
      text_ += c;
    } else if (c == '\n') {
      text_ += "\\n";
    } else if (c == '\t') {
      text_ += "\\t";
    } else if (code < 0x20 || code == 0x7F || (code >= 0x80 && code < 0xA0 && text_.back() == '\xC2')) {
      // JSON allows those from U+007F to U+009F as they are, but a terminal that the text is printed on obeys them.
      if (code >= 0x80) text_.pop_back();
      text_ += "\\u00";
      text_ += hexadecimal[code >> 4];
      text_ += hexadecimal[code & 0xF];
    } else {
      text_ += c;
    }
    text.remove_prefix(static_cast<std::size_t>(special - text.begin()) + 1);
  }
  text_ += '"';
}

void JsonWriter::inParallel(std::size_t count, const WriteRange& writeRange) {
  open('[', ']');
  if (count <= itemsPerPiece) {
    writeRange(*this, 0, count);
  } else {
    const auto write = [this, &writeRange](std::size_t first, std::size_t last, std::string& text) {
      JsonWriter piece;
      piece.text_.swap(text);
      piece.closings_ = closings_;
      piece.indentation_ = indentation_;
      piece.empty_ = first == 0;
      writeRange(piece, first, last);
      piece.text_.swap(text);
    };
    if (sink_) handOver();
    makeInOrder(count, itemsPerPiece, write, [this](std::string_view piece) {
      if (sink_) {
        sink_(piece);
      } else {
        text_ += piece;
      }
    });
    empty_ = false;
  }
  end();
}

template <class Values>
void JsonWriter::rows(const Values& values, std::size_t perLine) {
  const std::size_t count = values.size();
  inParallel((count + perLine - 1) / perLine, [&](JsonWriter& json, std::size_t first, std::size_t last) {
    for (std::size_t i = first * perLine; i < std::min(last * perLine, count); ++i) {
      if (i % perLine == 0) {
        json.beforeValue();
      } else {
        json.text_ += ", ";
      }
      if constexpr (std::is_same_v<Values, std::vector<bool>>) {
        json.text_ += values[i] ? "true" : "false";
      } else {
        json.number(values[i]);
      }
    }
  });
}

void JsonWriter::table(std::span<const double> numbers, std::size_t perLine) {
  rows(numbers, perLine);
}

void JsonWriter::table(const std::vector<bool>& truths, std::size_t perLine) {
  rows(truths, perLine);
}

std::string JsonWriter::take() {
  return std::exchange(text_, {});
}

}  // namespace gavrel
