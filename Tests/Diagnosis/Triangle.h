#pragma once

#include "Tests/Structures.h"

namespace gavrel {

/// A triangle in the plane z = 0 with corners at (0, 0), (4, 0) and (1, 2), held at the first two, loaded at the third.
struct Triangle : Project {
  explicit Triangle(BarKind kind = {}) {
    for (const Vector3& place : {Vector3{0, 0, 0}, Vector3{4, 0, 0}, Vector3{1, 2, 0}}) addNode(place);
    addBar(*this, 0, 1, 100, kind);
    addBar(*this, 1, 2, 100, kind);
    addBar(*this, 2, 0, 100, kind);
    setLoadAndRestraint(0, {}, true, true, true);
    setLoadAndRestraint(1, {}, false, true, true);
    setLoadAndRestraint(2, {1, -2, 0}, false, false, false);
  }
};

}  // namespace gavrel
