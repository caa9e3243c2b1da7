#pragma once

#include <memory>

#include "CommandLine/Structures/StructureBuilder.h"

namespace gavrel {

/// A through truss bridge along x: two Pratt trusses, joined by floor members, top struts, bracing in the planes of
/// both chords and a diagonal in each portal frame. It is restrained at x = 0 and rolls along x at the other end; the
/// total load is shared equally by the lower nodes between the supports.
struct Bridge {
  double span = 40.0;
  int panels = 8;  ///< at least 2
  double width = 6.0;
  double height = 6.0;
  Vector3 totalLoad{0, 0, -1000};
  BarProperties bars;

  [[nodiscard]] std::shared_ptr<Project> build() const;
};

}  // namespace gavrel
