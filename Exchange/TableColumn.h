#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "DataModel/Project.h"

namespace gavrel {

/// One entry of a table: nothing, a whole number, a number or a text.
using Cell = std::variant<std::monostate, std::int64_t, double, std::string>;

/// A column of a table of a project's nodes or elements: in the window, in exported files and in imported ones.
struct TableColumn {
  enum class Content { text, wholeNumbers, numbers };
  enum class Origin {
    input,    ///< an import reads it
    derived,  ///< follows from inputs
    result    ///< a solve gives it
  };

  std::string_view name;  ///< its heading; an import takes it in whatever case
  Content content;
  Origin origin;
  int width;  ///< on a screen, in pixels
  Cell (*cell)(const Project&, std::int64_t row);
};

/// A table has a row for each node, in their order. Loads, restraints and displacements are the node's own, from its
/// six entries in the project's arrays.
[[nodiscard]] std::span<const TableColumn> nodeColumns();

/// The words for a node's restrained directions in the column "held", in the order of its degrees of freedom.
inline constexpr std::array<std::string_view, dofsPerNode> heldWords{"x", "y", "z", "rx", "ry", "rz"};

/// A table has a row for each bar and then for each beam. Length is the undeformed one; strain and force are those of
/// the last assembly, positive in tension. Cells are empty for what an element does not have.
[[nodiscard]] std::span<const TableColumn> elementColumns();

[[nodiscard]] std::int64_t elementCount(const Project& project);

/// The shortest text that reads back to the same number; empty for nothing.
[[nodiscard]] std::string formatCell(const Cell& cell);

}  // namespace gavrel
