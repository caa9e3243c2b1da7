#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Something in a structure that a solve would stumble over, with the nodes and elements concerned by their position.
struct Finding {
  enum class Consequence {
    EndsProgram,     ///< the solve is fatal
    NeverConverges,  ///< it runs all its steps in vain
    Meaningless,     ///< it comes to an end, but not with the displacements of the structure
    Doubtful         ///< likely to be a mistake
  };

  Consequence consequence = Consequence::Doubtful;
  std::string title;  ///< a few words
  std::string text;   ///< a sentence: what it is, what will happen, what to do
  std::vector<std::int64_t> nodes = {};
  std::vector<std::int64_t> trusses = {};
  std::vector<std::int64_t> beams = {};
  bool mendedByLinearTrusses = false;  ///< making `trusses` linear would help
};

/// "Ends the program" and so on.
[[nodiscard]] std::string_view nameOf(Finding::Consequence consequence);

/// "node 3", "nodes 3 and 7", "nodes 3, 4, 5, 6 and 96 more".
[[nodiscard]] std::string listed(std::string_view one, const std::vector<std::int64_t>& positions);

/// "translation along x" for the number of a degree of freedom.
[[nodiscard]] std::string directionOf(std::int64_t dof);

/// The positions that are true.
[[nodiscard]] std::vector<std::int64_t> markedOf(const std::vector<bool>& marked);
