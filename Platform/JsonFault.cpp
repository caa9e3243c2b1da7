#include "Platform/JsonFault.h"

#include <rapidjson/encodedstream.h>
#include <rapidjson/error/en.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>
#include <simdjson.h>

#include <algorithm>
#include <cctype>

#include "Platform/NumberText.h"

namespace gavrel {

namespace {

constexpr std::string_view tooLarge = "the number is beyond the range of a double";

/// Refuses the numbers and texts that the parser accepts although they are not valid.
struct Checks : rapidjson::BaseReaderHandler<rapidjson::UTF8<>, Checks> {
  std::string_view refusal;

  bool RawNumber(const char* text, rapidjson::SizeType length, bool) {
    if (parseJsonNumber({text, length})) return true;
    refusal = tooLarge;
    return false;
  }
  bool String(const char* text, rapidjson::SizeType length, bool) {
    if (simdjson::validate_utf8(text, length)) return true;
    refusal = "the surrogate pair in string is invalid";
    return false;
  }
};

JsonFault faultAt(std::size_t offset, rapidjson::ParseErrorCode code, std::string_view refusal, std::string_view text) {
  const auto codeAt = [text](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0; };
  if (offset > 0 && text[offset - 1] == '0' && std::isdigit(codeAt(offset)) != 0)
    return {offset - 1, "a number must not begin with 0"};

  std::string reason = rapidjson::GetParseError_En(code);  // "Invalid value."
  reason.front() = static_cast<char>(std::tolower(reason.front()));
  reason.pop_back();
  if (code == rapidjson::kParseErrorTermination) {
    if (offset > 0 && text[offset - 1] == '"') offset = text.rfind("\\u", offset);
    reason = refusal;
  } else if (code == rapidjson::kParseErrorNumberTooBig) {
    reason = tooLarge;
  } else if (code == rapidjson::kParseErrorValueInvalid) {
    // The parser stops at the first letter that is wrong.
    while (offset > 0 && (std::isalpha(codeAt(offset - 1)) != 0 || text[offset - 1] == '-')) --offset;
  } else if (code == rapidjson::kParseErrorStringEscapeInvalid && text[offset] != '\\') {
    reason = "a control character must be escaped in a string";
  }
  return {offset, offset < text.size() ? reason : reason + " (the text ends here)"};
}

/// Whether the number at `offset` is in the range of a double. The parser takes some for too large, such as 0e999.
bool isInRange(std::string_view text, std::size_t offset) {
  const std::string_view number = text.substr(offset);
  return parseJsonNumber(number.substr(0, number.find_first_not_of("+-.0123456789eE"))).has_value();
}

}  // namespace

std::string JsonFault::describe(std::string_view text) const {
  const std::string_view before = text.substr(0, offset);
  const auto line = std::count(before.begin(), before.end(), '\n') + 1;
  const std::size_t lineStart = before.rfind('\n') + 1;  // npos + 1 is 0: the first line
  return "line " + std::to_string(line) + ", column " + std::to_string(offset - lineStart + 1) + " (byte " +
         std::to_string(offset) + "): " + reason;
}

std::optional<JsonFault> findJsonFault(std::string_view text) {
  constexpr unsigned flags =
      rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag | rapidjson::kParseNumbersAsStringsFlag;
  rapidjson::MemoryStream bytes(text.data(), text.size());
  rapidjson::EncodedInputStream<rapidjson::UTF8<>, rapidjson::MemoryStream> stream(bytes);
  rapidjson::Reader reader;
  Checks checks;
  const auto result = reader.Parse<flags>(stream, checks);
  if (result.Code() == rapidjson::kParseErrorNumberTooBig && isInRange(text, result.Offset())) return std::nullopt;
  if (result.IsError()) return faultAt(result.Offset(), result.Code(), checks.refusal, text);
  if (bytes.Tell() < text.size()) return JsonFault{bytes.Tell(), "a zero byte"};
  return std::nullopt;
}

}  // namespace gavrel
