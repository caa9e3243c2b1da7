#pragma once

#include <vector>

#include "Factorization/Part.h"

namespace gavrel {

/// Makes a separator smaller or its sides more equal, by moving one vertex of it after the other to a side and its
/// neighbours on the other side into the separator (Fiduccia, Mattheyses 1982; Liu 1989).
void refineSeparator(const Part& part, std::vector<Side>& sides);

}  // namespace gavrel
