#include "Exchange/DxfEntities.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cmath>

#include "Exchange/Draft.h"
#include "Platform/NumberText.h"
#include "Platform/ShownText.h"

namespace gavrel {

DxfGroup DxfGroup::read(Lines& lines) {
  const auto code = lines.next();
  if (!code) throw ImportError("line " + std::to_string(lines.number()) + ": the file ends before its EOF");
  const std::string_view digits = trimmed(*code);
  const std::size_t line = lines.number();
  DxfGroup group;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), group.code);
  const auto value = lines.next();
  if (error != std::errc() || end != digits.data() + digits.size() || !value)
    throw ImportError("line " + std::to_string(line) + ": expected a group code and its value, found " +
                      shownQuoted(digits));
  group.value = trimmed(*value);
  group.line = lines.number();
  return group;
}

double DxfGroup::number() const {
  const auto number = parseNumber(std::string(value));
  if (!number || !std::isfinite(*number))
    throw ImportError("line " + std::to_string(line) + ": expected a number, found " + shownQuoted(value));
  return *number;
}

const DxfGroup* DxfEntity::find(int code) const {
  const auto found = std::ranges::find(groups_, code, &DxfGroup::code);
  return found == groups_.end() ? nullptr : &*found;
}

void DxfEntity::add(const DxfGroup& group) {
  constexpr std::array known{10, 11, 20, 21, 30, 31, 38, 42, 67, 70, 210, 220, 230};
  if (std::ranges::find(known, group.code) == known.end()) return;
  if (find(group.code) == nullptr) groups_.push_back(group);
}

double DxfEntity::number(int code, double otherwise) const {
  const DxfGroup* group = find(code);
  return group == nullptr ? otherwise : group->number();
}

double DxfEntity::coordinate(int code) const {
  const DxfGroup* group = find(code);
  if (group == nullptr) lacks(code);
  return group->number();
}

Vector3 DxfEntity::point(int xCode) const {
  return {coordinate(xCode), coordinate(xCode + 10), number(xCode + 20, 0)};
}

bool DxfEntity::flag(int code, int bits) const {
  const DxfGroup* group = find(code);
  if (group == nullptr) return false;
  const double number = group->number();
  if (number < 0 || number > INT_MAX || number != std::trunc(number))
    throw ImportError("line " + std::to_string(group->line) + ": expected a whole number, found " +
                      shownQuoted(group->value));
  return (static_cast<int>(number) & bits) != 0;
}

bool DxfEntity::isTilted() const {
  return number(210, 0) != 0 || number(220, 0) != 0 || number(230, 1) != 1;
}

void DxfEntity::lacks(int code) const {
  throw ImportError("line " + std::to_string(line) + ": the " + shownText(name) + " has no group " +
                    std::to_string(code));
}

DxfEntities::DxfEntities(std::string_view dxf) : lines_(dxf) {
  if (dxf.starts_with("AutoCAD Binary DXF")) throw ImportError("line 1: this is a binary DXF file; save it as ASCII");
}

bool DxfEntities::next(DxfEntity& entity) {
  const auto begin = [this, &entity] {
    entity.line = start_.line;
    entity.name = start_.value;
    entity.text_ = lines_.rest();
    entity.groups_.clear();
  };
  begin();
  while (!ended_) {
    const std::string_view before = lines_.rest();
    const DxfGroup group = DxfGroup::read(lines_);
    if (group.code == 0) {
      ended_ = group.value == "EOF";
      entersSection_ = group.value == "SECTION";
      if (group.value == "ENDSEC") section_ = {};
      start_ = section_ == "ENTITIES" && !ended_ ? group : DxfGroup{};
      entity.text_.remove_suffix(before.size());
      if (entity.line != 0) return true;
      begin();
    } else if (entersSection_ && group.code == 2) {
      section_ = group.value;
      entersSection_ = false;
    } else if (entity.line != 0) {
      entity.add(group);
    }
  }
  return false;
}

}  // namespace gavrel
