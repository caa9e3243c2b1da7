#pragma once

#include <gmock/gmock.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "DataModel/Project.h"

namespace gavrel {

/// One file of Examples/ after Solve().
struct SolvedExample {
  std::shared_ptr<Project> project;
  std::vector<double> norms;  ///< relative residual norm of each step

  /// Displacement of a node; directions 0 to 5 are x, y, z and the rotations about them.
  [[nodiscard]] double U(std::int64_t node, std::int64_t direction) const;
  [[nodiscard]] Vector3 coordinates(std::int64_t node) const;
  /// The bar between two nodes, whichever of them it starts at; fails the test if there is none.
  [[nodiscard]] const TrussElement& bar(std::int64_t a, std::int64_t b) const;
  [[nodiscard]] double force(std::int64_t a, std::int64_t b) const { return bar(a, b).axialForce(); }
};

/// Reads and solves Examples/`name`.json; keeps the solver's lines off the test's output.
[[nodiscard]] SolvedExample solveExample(const std::string& name);

/// What a closed form must agree with: six digits.
[[nodiscard]] inline auto closeTo(double expected) {
  return testing::DoubleNear(expected, 1e-6 * std::abs(expected));
}

}  // namespace gavrel
