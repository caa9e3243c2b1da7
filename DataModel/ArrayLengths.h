#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "DataModel/Project.h"
#include "Platform/Result.h"

namespace gavrel {

/// Compares the lengths of X_I, F_I and D_I with what the nodes need. A file may hold any number of entries; entries
/// appended to an array that does not fit would belong to other nodes than intended.
struct ArrayLengths {
  struct Misfit {
    std::string_view array;    ///< "X_I", "F_I" or "D_I"
    std::int64_t entries = 0;  ///< how many the array has
    std::int64_t wanted = 0;   ///< how many the nodes need; for X_I the next lower multiple of three

    [[nodiscard]] bool isMissing() const { return entries < wanted; }
    /// "F_I has 6 entries, where 2 nodes have 12".
    [[nodiscard]] std::string text() const;

    bool operator==(const Misfit&) const = default;
  };

  std::vector<Misfit> misfits;  ///< in the order X_I, F_I, D_I; empty if all fit

  [[nodiscard]] static ArrayLengths check(const Project& project);
};

/// To be called before anything is added to a project: fills what is missing of F_I with zeros and of D_I with false,
/// and returns a line for each array that was filled. Fails, and changes nothing, where there are more entries than the
/// nodes have, since nothing tells what they belong to.
[[nodiscard]] Result<std::vector<std::string>> fitArrays(Project& project);

}  // namespace gavrel
