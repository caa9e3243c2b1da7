#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "DataModel/Vector3.h"
#include "Exchange/Lines.h"

namespace gavrel {

/// A line with a group code and the line with its value.
struct DxfGroup {
  int code = 0;
  std::string_view value = {};
  std::size_t line = 0;  ///< of the value

  /// The group at the next two lines. Throws ImportError if there is none.
  [[nodiscard]] static DxfGroup read(Lines& lines);

  /// Throws ImportError for what is no finite number.
  [[nodiscard]] double number() const;
};

/// One entity of a drawing; its texts are views of the file's text. What it reads of its groups throws ImportError for
/// what is not there, unless told what to take otherwise, and for what is no finite number.
class DxfEntity {
 public:
  std::string_view name = {};
  std::size_t line = 0;  ///< with the name

  [[nodiscard]] double number(int code, double otherwise) const;
  [[nodiscard]] double coordinate(int code) const;
  [[nodiscard]] Vector3 point(int xCode) const;
  /// Whether one of the bits is set in the whole number of the group; no group counts as 0.
  [[nodiscard]] bool flag(int code, int bits) const;
  /// Whether it lies in a plane of its own, in whose axes its points are given.
  [[nodiscard]] bool isTilted() const;

  /// Calls `visit` with each group.
  template <class Visit>
  void forEachGroup(Visit&& visit) const {
    for (Lines lines(text_, line); !lines.rest().empty();) visit(DxfGroup::read(lines));
  }
  [[noreturn]] void lacks(int code) const;

 private:
  friend class DxfEntities;
  [[nodiscard]] const DxfGroup* find(int code) const;
  void add(const DxfGroup& group);

  std::string_view text_;         // of its groups
  std::vector<DxfGroup> groups_;  // the first of each code that describes lines
};

/// The entities of a drawing itself, without those of its blocks, one after the other.
class DxfEntities {
 public:
  /// Throws ImportError for a binary file.
  explicit DxfEntities(std::string_view dxf);

  /// Puts the next one into `entity`; false after the last one. Throws ImportError for what is no group, and for a file
  /// without its end.
  [[nodiscard]] bool next(DxfEntity& entity);

 private:
  Lines lines_;
  std::string_view section_;
  bool entersSection_ = false;
  bool ended_ = false;
  DxfGroup start_;  // of the next entity; without a line before there is one
};

}  // namespace gavrel
