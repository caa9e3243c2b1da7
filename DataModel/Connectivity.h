#pragma once

#include <cstdint>
#include <vector>

#include "DataModel/Project.h"

namespace gavrel {

/// How a project's elements join its nodes. Elements are named by their position in their list.
struct Connectivity {
  std::vector<std::int64_t> zeroLengthTrusses;
  std::vector<std::int64_t> zeroLengthBeams;
  std::vector<std::int64_t> trussesWithUnknownNodes;
  std::vector<std::int64_t> beamsWithUnknownNodes;
  std::vector<std::int64_t> nodesWithoutElements;
  std::vector<std::int64_t> repeatedTrusses;  ///< those that join the same two nodes as one before them
  std::vector<std::int64_t> repeatedBeams;
  std::vector<std::int64_t> partOf;  ///< for each node, the lowest node of the part of the structure that it belongs to

  [[nodiscard]] static Connectivity examine(const Project& project);
};

}  // namespace gavrel
