#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "DataModel/Project.h"
#include "Platform/Result.h"

namespace gavrel {

/// Properties of imported elements whose file does not give them.
struct ImportSettings {
  double area = 25;
  double youngModulus = 100000;
  bool isNonLinear = false;
  /// Ends of lines that are no further apart than this become one node, or join the nearest existing node; a millionth
  /// of the drawing's extent unless given.
  std::optional<double> tolerance = {};
  /// A drawing whose blocks have more lines where they are inserted is refused: a small file could have more of them
  /// than any memory holds.
  std::int64_t maxLinesOfBlocks = 1'000'000;
};

struct ImportOutcome {
  std::int64_t nodes = 0;
  std::int64_t trusses = 0;
  std::int64_t beams = 0;
  std::vector<std::string> remarks;  ///< a line for each kind of thing that was left out or changed
};

/// Adds the content of all files to a project. If one cannot be read, adds nothing and fails with the file and the
/// place in it. The project's arrays are made to fit its nodes first, see fitArrays; a remark says so.
///
/// A name that ends in ".dxf" is a drawing (DXF, text or binary): each straight piece of its lines and polylines
/// becomes a bar, and those of its blocks wherever they are inserted. What lies in its paper space is left out. Any
/// other file is a table of values separated by commas, semicolons or tabs, with a heading and at most 1000 columns. If
/// commas do not separate, numbers may have decimal commas instead of points, but not both in one table. It is a table
/// of nodes if it has columns x and y, of elements if it has start and end. Elements name the nodes of the table
/// imported with them by its column "node", or by their order without one; without such a table they name the nodes of
/// the project. Columns are those of exportNodes and exportElements, in any order and case; results are not read.
[[nodiscard]] Result<ImportOutcome> importFiles(Project& project, const std::vector<std::filesystem::path>& files,
                                                const ImportSettings& settings);

}  // namespace gavrel
