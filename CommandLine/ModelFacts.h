#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "DataModel/ArrayLengths.h"
#include "DataModel/Connectivity.h"
#include "DataModel/Project.h"

namespace gavrel {

/// The facts that `gavrel-cli info` prints: what is known of a project without solving it.
struct ModelFacts {
  struct Extents {
    Vector3 least;
    Vector3 greatest;
  };

  std::string name;
  std::int64_t nodes = 0;
  std::int64_t trusses = 0;
  std::int64_t compressionOnlyTrusses = 0;
  std::int64_t nonLinearTrusses = 0;
  std::int64_t beams = 0;
  std::optional<Extents> extents;  ///< none without nodes
  // Entries behind those of the last node are not counted.
  std::int64_t restrainedDofs = 0;
  std::int64_t loadedDofs = 0;
  std::int64_t loadedRestrainedDofs = 0;  ///< such loads keep a solve from converging
  Vector3 totalLoad;                      ///< sum of the forces; moments are left out
  Connectivity connectivity;
  ArrayLengths arrayLengths;

  [[nodiscard]] static ModelFacts gather(const Project& project);

  /// Lines for the user to read.
  [[nodiscard]] std::string toText() const;
  /// One JSON object with the members' names as keys; of the connectivity its lists of faults, of the array lengths
  /// the misfits.
  [[nodiscard]] std::string toJson() const;
};

}  // namespace gavrel
