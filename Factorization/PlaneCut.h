#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "Factorization/Part.h"

namespace gavrel {

using Direction = std::array<double, 3>;

/// How far a vertex lies along a direction.
[[nodiscard]] inline double project(const Part& part, std::int32_t vertex, const Direction& direction) {
  const double* const place = part.coordinates.data() + 3 * std::ptrdiff_t{vertex};
  return direction[0] * place[0] + direction[1] * place[1] + direction[2] * place[2];
}

/// Cuts between these quantiles of a part's vertices keep its sides balanced.
constexpr double windowStart = 0.4;
constexpr double windowEnd = 0.6;

/// Cuts across a direction where fewest unknowns of one side touch the other. The separator is the smallest set of
/// vertices that covers the cut edges.
[[nodiscard]] std::vector<Side> cutByPlane(const Part& part, const Direction& direction);

}  // namespace gavrel
