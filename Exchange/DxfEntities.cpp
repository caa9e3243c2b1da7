#include "Exchange/DxfEntities.h"

#include <algorithm>
#include <array>

#include "Platform/ShownText.h"

namespace gavrel {

const DxfGroup* DxfEntity::find(int code) const {
  const auto found = std::ranges::find(groups_, code, &DxfGroup::code);
  return found == groups_.end() ? nullptr : &*found;
}

void DxfEntity::add(const DxfGroup& group) {
  constexpr std::array known{2, 10, 11, 20, 21, 30, 31, 38, 41, 42, 43, 44, 45, 50, 67, 70, 71, 210, 220, 230};
  if (!std::ranges::binary_search(known, group.code)) return;
  if (find(group.code) == nullptr) groups_.push_back(group);
}

std::string_view DxfEntity::text(int code) const {
  const DxfGroup* group = find(code);
  if (group == nullptr) lacks(code);
  return group->text();
}

double DxfEntity::number(int code, double otherwise) const {
  const DxfGroup* group = find(code);
  return group == nullptr ? otherwise : group->number();
}

int DxfEntity::wholeNumber(int code, int otherwise) const {
  const DxfGroup* group = find(code);
  return group == nullptr ? otherwise : group->wholeNumber();
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
  return (wholeNumber(code, 0) & bits) != 0;
}

bool DxfEntity::isTilted() const {
  return number(210, 0) != 0 || number(220, 0) != 0 || number(230, 1) != 1;
}

Vector3 DxfEntity::extrusion() const {
  return {number(210, 0), number(220, 0), number(230, 1)};
}

void DxfEntity::lacks(int code) const {
  place.refuse("the " + shownText(name) + " has no group " + std::to_string(code));
}

bool DxfEntities::next(DxfEntity& entity) {
  const auto begin = [this, &entity] {
    if (!start_) return false;
    entity.name = start_->text();
    entity.section = section_;
    entity.place = start_->place;
    entity.following_ = groups_;
    entity.groups_.clear();
    return true;
  };
  for (bool hasBegun = begin(); !ended_;) {
    const DxfGroup group = groups_.next();
    if (group.code == 0) {
      ended_ = group.text() == "EOF";
      entersSection_ = group.text() == "SECTION";
      if (group.text() == "ENDSEC") section_ = {};
      const bool isEntity = !ended_ && (section_ == "ENTITIES" || section_ == "BLOCKS");
      start_ = isEntity ? std::optional(group) : std::nullopt;
      if (hasBegun) return true;
      hasBegun = begin();
    } else if (entersSection_ && group.code == 2) {
      section_ = group.text();
      entersSection_ = false;
    } else if (hasBegun) {
      entity.add(group);
    }
  }
  return false;
}

}  // namespace gavrel
