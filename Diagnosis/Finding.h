#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace gavrel {

/// A fault or a likely mistake in a structure, with the positions of the nodes and elements concerned.
struct Finding {
  /// From the worst to the mildest.
  enum class Consequence {
    EndsProgram,     ///< the solve is fatal
    NeverConverges,  ///< the solve does all its steps without converging
    Meaningless,     ///< the solve ends, but its displacements are not those of the structure
    Doubtful         ///< the solve gives a result; likely to be a mistake all the same
  };

  Consequence consequence = Consequence::Doubtful;
  std::string title;  ///< a few words
  std::string text;   ///< a sentence: what it is, what will happen, what to do
  std::vector<std::int64_t> nodes = {};
  std::vector<std::int64_t> trusses = {};
  std::vector<std::int64_t> beams = {};
  std::vector<std::int64_t> trussesToMakeLinear = {};  ///< bars whose change to linear behaviour would help
};

/// Whether the finding keeps the solve from a result that can be trusted: anything but doubtful.
[[nodiscard]] bool isSerious(const Finding& finding);

/// "Ends the program" and so on.
[[nodiscard]] std::string_view describeConsequence(Finding::Consequence consequence);

/// The middle of a sentence about a loss of stiffness: ", and a solve ends the program: " and so on.
[[nodiscard]] std::string describeEnding(Finding::Consequence consequence);

/// "node 3", "nodes 3 and 7", "nodes 3, 4, 5, 6 and 96 more".
[[nodiscard]] std::string listPositions(std::string_view one, const std::vector<std::int64_t>& positions);

/// The number rounded to four digits.
[[nodiscard]] std::string formatRounded(double number);

/// The positions that are true.
[[nodiscard]] std::vector<std::int64_t> collectMarked(const std::vector<bool>& marked);

}  // namespace gavrel
