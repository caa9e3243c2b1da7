#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace gavrel {

/// Something in a structure that a solve would stumble over, with the nodes and elements concerned by their position.
struct Finding {
  /// From the worst to the mildest.
  enum class Consequence {
    EndsProgram,     ///< the solve is fatal
    NeverConverges,  ///< it runs all its steps in vain
    Meaningless,     ///< it comes to an end, but not with the displacements of the structure
    Doubtful         ///< the solve comes to its end; likely to be a mistake all the same
  };

  Consequence consequence = Consequence::Doubtful;
  std::string title;  ///< a few words
  std::string text;   ///< a sentence: what it is, what will happen, what to do
  std::vector<std::int64_t> nodes = {};
  std::vector<std::int64_t> trusses = {};
  std::vector<std::int64_t> beams = {};
  std::vector<std::int64_t> trussesToMakeLinear = {};  ///< doing so would help
};

/// Whether the finding stands between the structure and a result that can be trusted.
[[nodiscard]] bool isSerious(const Finding& finding);

/// "Ends the program" and so on.
[[nodiscard]] std::string_view nameOf(Finding::Consequence consequence);

/// How a sentence about a loss of stiffness goes on: ", and a solve ends the program: " and so on.
[[nodiscard]] std::string describeEnding(Finding::Consequence consequence);

/// "node 3", "nodes 3 and 7", "nodes 3, 4, 5, 6 and 96 more".
[[nodiscard]] std::string listed(std::string_view one, const std::vector<std::int64_t>& positions);

/// The number to four digits.
[[nodiscard]] std::string shown(double number);

/// The positions that are true.
[[nodiscard]] std::vector<std::int64_t> collectMarked(const std::vector<bool>& marked);

}  // namespace gavrel
