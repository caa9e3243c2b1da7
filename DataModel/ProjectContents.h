#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "DataModel/BeamElement.h"
#include "DataModel/TrussElement.h"
#include "Platform/JsonPieces.h"

namespace gavrel {

/// What a file holds of a project.
struct ProjectContents {
  std::string name;
  std::vector<TrussElement> trussElements;
  std::vector<BeamElement> beamElements;
  std::vector<double> X_I;
  std::vector<double> F_I;
  std::vector<bool> D_I;
};

/// What `json` holds. Throws JsonError, with the key and element or, where the text is not JSON, the line and column.
[[nodiscard]] ProjectContents readContents(std::string json);

/// The same from a text of about `size` bytes that is read piece by piece, by several threads, and never there as a
/// whole. Nothing if anything is wrong with it, or might be: only the text as a whole shows what.
[[nodiscard]] std::optional<ProjectContents> readContentsInPieces(const JsonPieces::Source& source, std::uint64_t size,
                                                                  std::size_t pieceSize = std::size_t{256} * 1024);

}  // namespace gavrel
