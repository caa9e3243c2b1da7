#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "DataModel/Vector3.h"
#include "Exchange/DxfGroups.h"

namespace gavrel {

/// One entity of a drawing; its texts are views of the file. What it reads of its groups throws ImportError for what is
/// not there, unless told what to take otherwise, and for what is no finite number.
class DxfEntity {
 public:
  std::string_view name = {};
  std::string_view section = {};
  DxfPlace place = {};  ///< of the name

  [[nodiscard]] bool has(int code) const { return find(code) != nullptr; }
  [[nodiscard]] std::string_view text(int code) const;
  [[nodiscard]] double number(int code, double otherwise) const;
  [[nodiscard]] int wholeNumber(int code, int otherwise) const;
  [[nodiscard]] double coordinate(int code) const;
  [[nodiscard]] Vector3 point(int xCode) const;
  /// Whether one of the bits is set in the whole number of the group; no group counts as 0.
  [[nodiscard]] bool flag(int code, int bits) const;
  /// Whether it lies in a plane of its own, in whose axes its points are given.
  [[nodiscard]] bool isTilted() const;
  /// The axis across that plane.
  [[nodiscard]] Vector3 extrusion() const;

  /// Calls `visit` with each group.
  template <class Visit>
  void forEachGroup(Visit&& visit) const {
    DxfGroups groups = following_;
    for (DxfGroup group = groups.next(); group.code != 0; group = groups.next()) visit(group);
  }
  [[noreturn]] void lacks(int code) const;

 private:
  friend class DxfEntities;
  [[nodiscard]] const DxfGroup* find(int code) const;
  void add(const DxfGroup& group);

  DxfGroups following_{{}};       // what follows its name
  std::vector<DxfGroup> groups_;  // the first of each code that describes lines and blocks
};

/// The entities of a drawing itself and of its blocks, one after the other.
class DxfEntities {
 public:
  /// Throws ImportError for a binary file whose beginning is damaged.
  explicit DxfEntities(std::string_view dxf) : groups_(dxf) {}
  /// What follows an entity in its section, and the sections after it.
  explicit DxfEntities(const DxfEntity& before) : groups_(before.following_), section_(before.section) {}

  /// Puts the next one into `entity`; false after the last one. Throws ImportError for what is no group, and for a file
  /// without its end.
  [[nodiscard]] bool next(DxfEntity& entity);

 private:
  DxfGroups groups_;
  std::string_view section_;
  bool entersSection_ = false;
  bool ended_ = false;
  std::optional<DxfGroup> start_;  // of the next entity
};

}  // namespace gavrel
