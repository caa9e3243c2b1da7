#include "Platform/JsonWriter.h"

#include <array>
#include <cmath>
#include <utility>

#include "Platform/NumberText.h"

namespace gavrel {

namespace {

constexpr std::size_t indentationStep = 2;
constexpr std::size_t largestPiece = std::size_t{256} * 1024;

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
  for (const char c : text) {
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
  }
  text_ += '"';
}

template <class Values>
void JsonWriter::rows(const Values& values, std::size_t perLine) {
  open('[', ']');
  std::size_t place = 0;
  for (const auto value : values) {
    if (place == 0) {
      beforeValue();
    } else {
      text_ += ", ";
    }
    if constexpr (std::is_same_v<Values, std::vector<bool>>) {
      text_ += value ? "true" : "false";
    } else {
      number(value);
    }
    if (++place == perLine) place = 0;
  }
  end();
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
