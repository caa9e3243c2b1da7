#pragma once

#include <span>
#include <vector>

#include "Factorization/PlaneCut.h"

namespace gavrel {

/// Directions across which a structure may be cut well: the axes, those between them, and those of many of its edges.
[[nodiscard]] std::vector<Direction> listDirections(const Part& whole);

/// That of the directions along which a part extends the most.
[[nodiscard]] Direction findLongest(const Part& part, std::span<const Direction> directions);

/// Of `directions` and the part's axes of inertia, that across which the smallest separator is to be expected, judged
/// by a sample of the vertices. Directions that are much worse are removed, since they will be so in the part's parts;
/// some are left.
[[nodiscard]] Direction chooseDirection(const Part& part, std::vector<Direction>& directions);

}  // namespace gavrel
