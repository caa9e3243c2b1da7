#pragma once

#include <cstdint>
#include <vector>

#include "DataModel/Project.h"
#include "Platform/JsonWriter.h"

namespace gavrel {

/// A project after its solve, with the norms that the solve printed.
struct SolveResult {
  /// A value and the node or element where it occurs; index -1 if there is none.
  struct Extreme {
    std::int64_t index = -1;
    double value = 0;
  };

  const Project& project;
  std::vector<double> norms;

  [[nodiscard]] bool converged() const { return !norms.empty() && norms.back() < Project::convergenceTolerance; }

  /// Length of the longest displacement vector, and its node.
  [[nodiscard]] Extreme largestDisplacement() const;
  /// Largest axial forces of the bars; compression is negative.
  [[nodiscard]] Extreme largestTension() const;
  [[nodiscard]] Extreme largestCompression() const;

  /// Writes one object with "name", "converged", "norms", "U_I", "dU_I", "R_I", "trussElements" and "beamElements";
  /// numbers that are not finite become null.
  void write(JsonWriter& json) const;
};

}  // namespace gavrel
