#include "Exchange/DxfGroups.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <climits>
#include <cmath>

#include "Exchange/Draft.h"
#include "Platform/NumberText.h"
#include "Platform/ShownText.h"

namespace gavrel {

namespace {

constexpr const char* endsEarly = "the file ends before its EOF";

enum class Type { text, real, int16, int32, int64, truth, bytes };

struct TypedCodes {
  int first;
  int last;
  Type type;
};

/// What the values of groups are in a binary file.
constexpr auto typesOfCodes = std::to_array<TypedCodes>({
    {0, 9, Type::text},        {10, 59, Type::real},     {60, 79, Type::int16},    {90, 99, Type::int32},
    {100, 109, Type::text},    {110, 149, Type::real},   {160, 169, Type::int64},  {170, 179, Type::int16},
    {210, 239, Type::real},    {270, 289, Type::int16},  {290, 299, Type::truth},  {300, 309, Type::text},
    {310, 319, Type::bytes},   {320, 369, Type::text},   {370, 389, Type::int16},  {390, 399, Type::text},
    {400, 409, Type::int16},   {410, 419, Type::text},   {420, 429, Type::int32},  {430, 439, Type::text},
    {440, 459, Type::int32},   {460, 469, Type::real},   {470, 481, Type::text},   {999, 1003, Type::text},
    {1004, 1004, Type::bytes}, {1005, 1009, Type::text}, {1010, 1059, Type::real}, {1060, 1070, Type::int16},
    {1071, 1071, Type::int32},
});

std::string shownValue(const DxfGroup& group) {
  const double* number = std::get_if<double>(&group.value);
  return number == nullptr ? shownQuoted(group.text()) : numberText(*number);
}

}  // namespace

void DxfPlace::refuse(const std::string& why) const {
  throw ImportError((isByte ? "byte " : "line ") + std::to_string(number) + ": " + why);
}

std::string_view DxfGroup::text() const {
  const auto* text = std::get_if<std::string_view>(&value);
  return text == nullptr ? std::string_view() : *text;
}

double DxfGroup::number() const {
  const double* stored = std::get_if<double>(&value);
  const auto number = stored == nullptr ? parseNumber(std::string(text())) : *stored;
  if (!number || !std::isfinite(*number)) place.refuse("expected a number, found " + shownValue(*this));
  return *number;
}

int DxfGroup::wholeNumber() const {
  const double whole = number();
  if (whole < 0 || whole > INT_MAX || whole != std::trunc(whole))
    place.refuse("expected a whole number, found " + shownValue(*this));
  return static_cast<int>(whole);
}

DxfGroups::DxfGroups(std::string_view dxf) : lines_(dxf), binary_(dxf) {
  constexpr std::string_view name = "AutoCAD Binary DXF";
  constexpr std::string_view ending("\r\n\x1a\0", 4);
  isBinary_ = dxf.starts_with(name);
  if (!isBinary_) return;
  if (dxf.substr(name.size(), ending.size()) != ending)
    byte().refuse("the beginning of this binary DXF file is damaged");
  at_ = name.size() + ending.size();
  // A file begins with a section or a comment, so that its first code, if it has two bytes, is 0 or 999.
  const std::string_view first = binary_.substr(at_, 2);
  isOldBinary_ = first != std::string_view("\0\0", 2) && first != "\xe7\x03";
}

DxfGroup DxfGroups::next() {
  return isBinary_ ? nextOfBinary() : nextOfText();
}

DxfGroup DxfGroups::nextOfText() {
  const auto code = lines_.next();
  const DxfPlace place{lines_.number()};
  if (!code) place.refuse(endsEarly);
  const std::string_view digits = trimmed(*code);
  DxfGroup group;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), group.code);
  const auto value = lines_.next();
  if (error != std::errc() || end != digits.data() + digits.size() || !value)
    place.refuse("expected a group code and its value, found " + shownQuoted(digits));
  group.value = trimmed(*value);
  group.place.number = lines_.number();
  return group;
}

DxfGroup DxfGroups::nextOfBinary() {
  const DxfPlace start = byte();
  DxfGroup group{.code = takeCode()};
  group.place = byte();
  const auto* const found = std::ranges::find_if(
      typesOfCodes, [&](const TypedCodes& codes) { return codes.first <= group.code && group.code <= codes.last; });
  if (found == typesOfCodes.end()) start.refuse("expected a group code, found " + std::to_string(group.code));
  switch (found->type) {
    case Type::text:
      group.value = trimmed(takeBytes(binary_.substr(at_).find('\0')));
      ++at_;
      break;
    case Type::real:
      group.value = std::bit_cast<double>(takeInteger(sizeof(double)));
      break;
    case Type::int16:
      group.value = static_cast<double>(static_cast<std::int16_t>(takeInteger(2)));
      break;
    case Type::int32:
      group.value = static_cast<double>(static_cast<std::int32_t>(takeInteger(4)));
      break;
    case Type::int64:
      group.value = static_cast<double>(static_cast<std::int64_t>(takeInteger(8)));
      break;
    case Type::truth:
      group.value = static_cast<double>(takeInteger(1));
      break;
    case Type::bytes:
      group.value = takeBytes(takeInteger(1));
      break;
  }
  return group;
}

int DxfGroups::takeCode() {
  constexpr std::uint64_t twoBytesFollow = 255;
  if (isOldBinary_) {
    const std::uint64_t code = takeInteger(1);
    if (code != twoBytesFollow) return static_cast<int>(code);
  }
  return static_cast<int>(takeInteger(2));
}

std::string_view DxfGroups::takeBytes(std::size_t count) {
  if (count > binary_.size() - at_) byte().refuse(endsEarly);
  const std::string_view bytes = binary_.substr(at_, count);
  at_ += count;
  return bytes;
}

std::uint64_t DxfGroups::takeInteger(std::size_t bytes) {
  std::uint64_t integer = 0;
  int shift = 0;
  for (const char c : takeBytes(bytes)) {
    integer |= static_cast<std::uint64_t>(static_cast<unsigned char>(c)) << shift;
    shift += CHAR_BIT;
  }
  return integer;
}

}  // namespace gavrel
