#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "DataModel/Project.h"

/// One entry of a table: nothing, a whole number, a number or a text.
using Cell = std::variant<std::monostate, std::int64_t, double, std::string>;

/// A column of a table of a project's nodes or elements.
struct TableColumn {
  std::string_view name;  ///< also its heading in a file
  Cell (*cell)(const Project&, std::int64_t row);
  bool isResult = false;  ///< whether a solve gives it
};

/// A table has a row for each node, in their order. Loads, restraints and displacements are those that the project
/// keeps for the node, six a node.
[[nodiscard]] std::span<const TableColumn> nodeColumns();

/// A table has a row for each bar and then for each beam. Length is the undeformed one; strain and force are those of
/// the last assembly, positive in tension; what an element does not have is empty.
[[nodiscard]] std::span<const TableColumn> elementColumns();

[[nodiscard]] std::int64_t elementCount(const Project& project);

/// The shortest text that reads back to the same number; empty for nothing.
[[nodiscard]] std::string textOf(const Cell& cell);
