#include "Platform/JsonFault.h"

#include <algorithm>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {}

  std::optional<JsonFault> run() {
    while (!fault_ && expected_ != Expected::End) step();
    if (!fault_) {
      skipSpace();
      if (position_ != text_.size()) fail("expected the end of the text after the value");
    }
    return std::move(fault_);
  }

 private:
  enum class Expected { Value, FirstItem, FirstKey, Key, CommaOrClose, End };

  void step() {
    skipSpace();
    switch (expected_) {
      case Expected::FirstItem:
        if (peek() == ']') return close();
        [[fallthrough]];
      case Expected::Value:
        return value();
      case Expected::FirstKey:
        if (peek() == '}') return close();
        [[fallthrough]];
      case Expected::Key:
        return key();
      case Expected::CommaOrClose:
        return commaOrClose();
      case Expected::End:
        return;
    }
  }

  void value() {
    switch (peek()) {
      case '{':
        return open('}', Expected::FirstKey);
      case '[':
        return open(']', Expected::FirstItem);
      case '"':
        string();
        break;
      case 't':
        word("true");
        break;
      case 'f':
        word("false");
        break;
      case 'n':
        word("null");
        break;
      default:
        number();
    }
    valueEnded();
  }

  void open(char closing, Expected next) {
    closings_.push_back(closing);
    ++position_;
    expected_ = next;
  }

  void close() {
    closings_.pop_back();
    ++position_;
    valueEnded();
  }

  void valueEnded() { expected_ = closings_.empty() ? Expected::End : Expected::CommaOrClose; }

  void commaOrClose() {
    const char closing = closings_.back();
    if (peek() == closing) return close();
    if (peek() != ',') return fail(std::string("expected ',' or '") + closing + "'");
    ++position_;
    expected_ = closing == '}' ? Expected::Key : Expected::Value;
  }

  void key() {
    if (peek() != '"') return fail("expected a key in quotation marks");
    string();
    skipSpace();
    if (fault_) return;
    if (peek() != ':') return fail("expected ':' after the key");
    ++position_;
    expected_ = Expected::Value;
  }

  void word(std::string_view spelling) {
    if (text_.substr(position_, spelling.size()) != spelling) return fail("expected a value");
    position_ += spelling.size();
  }

  void number() {
    const std::size_t start = position_;
    if (peek() == '-') ++position_;
    if (!isDigit(peek())) {
      position_ = start;
      return fail("expected a value");
    }
    if (peek() == '0' && position_ + 1 < text_.size() && isDigit(text_[position_ + 1]))
      return fail("a number must not begin with 0");
    digits();
    if (peek() == '.') {
      ++position_;
      if (!digits()) return fail("expected a digit after the decimal point");
    }
    if (peek() == 'e' || peek() == 'E') {
      ++position_;
      if (peek() == '+' || peek() == '-') ++position_;
      if (!digits()) return fail("expected a digit in the exponent");
    }
    checkRange(start);
  }

  bool digits() {
    const std::size_t start = position_;
    while (isDigit(peek())) ++position_;
    return position_ > start;
  }

  void checkRange(std::size_t start) {
    const std::string token(text_.substr(start, position_ - start));
    if (std::isinf(plainDouble(token))) {
      position_ = start;
      fail("the number is beyond the range of a double");
    }
  }

  /// The token's value whatever the locale: infinite where it is too large, zero where it is too small.
  static double plainDouble(const std::string& token) {
    static const locale_t plain = ::newlocale(LC_ALL_MASK, "C", nullptr);
    return ::strtod_l(token.c_str(), nullptr, plain);
  }

  void string() {
    ++position_;
    while (!fault_) {
      if (position_ == text_.size()) return fail("the string is not closed");
      const char c = text_[position_];
      if (c == '"') {
        ++position_;
        return;
      }
      if (c == '\\') {
        escape();
      } else if (static_cast<unsigned char>(c) < 0x20) {
        fail("a control character must be escaped in a string");
      } else {
        character();
      }
    }
  }

  void escape() {
    const char kind = position_ + 1 < text_.size() ? text_[position_ + 1] : '\0';
    if (kind == 'u') return unicodeEscape();
    if (kind == '\0' || std::string_view("\"\\/bfnrt").find(kind) == std::string_view::npos)
      return fail("unknown escape in a string");
    position_ += 2;
  }

  void unicodeEscape() {
    const auto unit = codeUnit(position_);
    if (!unit) return fail("expected four hexadecimal digits after \\u");
    const bool high = *unit >= 0xD800 && *unit < 0xDC00;
    const bool low = *unit >= 0xDC00 && *unit < 0xE000;
    const auto second = high ? codeUnit(position_ + 6) : std::nullopt;
    if (low || (high && (!second || *second < 0xDC00 || *second >= 0xE000)))
      return fail("half of a surrogate pair stands alone");
    position_ += high ? 12 : 6;
  }

  /// The UTF-16 code unit of the escape \uXXXX at `offset`.
  [[nodiscard]] std::optional<std::uint32_t> codeUnit(std::size_t offset) const {
    constexpr std::size_t length = 6;
    if (offset > text_.size() || text_.size() - offset < length || text_.substr(offset, 2) != "\\u")
      return std::nullopt;
    const char* const end = text_.data() + offset + length;
    std::uint32_t unit = 0;
    const auto parsed = std::from_chars(text_.data() + offset + 2, end, unit, 16);
    return parsed.ec == std::errc() && parsed.ptr == end ? std::optional(unit) : std::nullopt;
  }

  /// One character of UTF-8, by the table of well-formed sequences of the Unicode standard.
  void character() {
    const auto lead = static_cast<unsigned char>(text_[position_]);
    if (lead < 0x80) {
      ++position_;
      return;
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    unsigned char lowest = 0x80;
    unsigned char highest = 0xBF;
    if (lead == 0xE0) lowest = 0xA0;
    if (lead == 0xED) highest = 0x9F;
    if (lead == 0xF0) lowest = 0x90;
    if (lead == 0xF4) highest = 0x8F;
    if (lead < 0xC2 || lead > 0xF4 || text_.size() - position_ < length) return fail("the text is not valid UTF-8");
    for (std::size_t i = 1; i < length; ++i) {
      const auto next = static_cast<unsigned char>(text_[position_ + i]);
      if (next < lowest || next > highest) return fail("the text is not valid UTF-8");
      lowest = 0x80;
      highest = 0xBF;
    }
    position_ += length;
  }

  void skipSpace() {
    while (position_ < text_.size() && std::string_view(" \t\r\n").find(text_[position_]) != std::string_view::npos)
      ++position_;
  }

  /// The next byte, or NUL at the end (where a NUL byte is no part of JSON either).
  [[nodiscard]] char peek() const { return position_ < text_.size() ? text_[position_] : '\0'; }

  void fail(std::string reason) {
    if (fault_) return;
    if (position_ >= text_.size()) reason += ", but the text ends";
    fault_ = JsonFault{position_, std::move(reason)};
  }

  std::string_view text_;
  std::size_t position_ = 0;
  Expected expected_ = Expected::Value;
  std::string closings_;  // the brackets still open, as what will close them
  std::optional<JsonFault> fault_;
};

}  // namespace

std::string JsonFault::describe(std::string_view text) const {
  const std::string_view before = text.substr(0, offset);
  const auto line = std::count(before.begin(), before.end(), '\n') + 1;
  const std::size_t lineStart = before.rfind('\n') + 1;  // npos + 1 is 0: the first line
  return "line " + std::to_string(line) + ", column " + std::to_string(offset - lineStart + 1) + " (byte " +
         std::to_string(offset) + "): " + reason;
}

std::optional<JsonFault> scanJson(std::string_view text) {
  return Scanner(text).run();
}
