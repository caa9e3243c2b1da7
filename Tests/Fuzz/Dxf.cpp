#include <array>
#include <optional>

#include "Tests/Fuzz/Imported.h"

using namespace gavrel;

/// A drawing after a byte that chooses the tolerance.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  if (size == 0) return 0;
  constexpr std::array<std::optional<double>, 5> tolerances{std::nullopt, 1e-300, 1e-3, 10.0, 1e300};
  const auto tolerance = tolerances[data[0] % tolerances.size()];
  const auto file = inputFolder().put("drawing.dxf", toText(data + 1, size - 1));
  const auto project = requireSoundImport({file}, {.tolerance = tolerance, .maxLinesOfBlocks = 1000});
  for (const TrussElement& bar : *project->trussElements)
    require(bar.startNodeId != bar.endNodeId, "a bar between a node and itself");
  return 0;
}
