#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "DataModel/Project.h"
#include "Platform/Result.h"

namespace gavrel {

/// Properties of imported members whose file does not give them.
struct ImportSettings {
  double area = 25;
  double youngModulus = 100000;
  bool isNonLinear = false;
  /// Ends of lines that are no further apart are one node, and join the nearest node that is there; a millionth of the
  /// drawing's extent unless given.
  std::optional<double> tolerance = {};
};

struct ImportOutcome {
  std::int64_t nodes = 0;
  std::int64_t trusses = 0;
  std::int64_t beams = 0;
  std::vector<std::string> remarks;  ///< what was left out or taken otherwise than it stands, a line each
};

/// Adds the content of all files to a project, or nothing and tells which file stands in the way, and where in it. The
/// project's arrays are made to fit its nodes first, see fitArrays; a remark tells of it.
///
/// A name that ends in ".dxf" is a drawing (ASCII DXF): each straight piece of its lines and polylines becomes a bar.
/// What lies in its paper space is left out.
/// Any other file is a table of values separated by commas, semicolons or tabs, with a heading and at most 1000
/// columns; without separating commas, numbers may have a comma instead of the point, all in the table alike. It is one
/// of nodes, if it has columns x and y, or of members, if it has start and end. Members name the nodes of the table
/// imported with them by its column "node", or by their order without one; without such a table they name the nodes of
/// the project. Columns are those of exportNodes and exportElements, in any order and case; results are passed over.
[[nodiscard]] Result<ImportOutcome> importFiles(Project& project, const std::vector<std::filesystem::path>& files,
                                                const ImportSettings& settings);

}  // namespace gavrel
