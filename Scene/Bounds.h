#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "DataModel/Vector3.h"

namespace gavrel {

/// The box, parallel to the axes, around the points that were added; empty at first.
struct Bounds {
  Vector3 low{infinity, infinity, infinity};
  Vector3 high{-infinity, -infinity, -infinity};

  static constexpr double infinity = std::numeric_limits<double>::infinity();

  [[nodiscard]] bool empty() const { return low.x > high.x; }

  /// Makes room for a ball; one with numbers that are not finite is left out.
  void add(const Vector3& centre, double radius) {
    if (!std::isfinite(centre.x + centre.y + centre.z + radius)) return;
    low = {std::min(low.x, centre.x - radius), std::min(low.y, centre.y - radius), std::min(low.z, centre.z - radius)};
    high = {std::max(high.x, centre.x + radius), std::max(high.y, centre.y + radius),
            std::max(high.z, centre.z + radius)};
  }

  /// Zero for an empty box.
  [[nodiscard]] Vector3 centre() const {
    if (empty()) return {};
    return low + (high - low) * 0.5;
  }

  /// Half of the diagonal; zero for an empty box.
  [[nodiscard]] double radius() const { return empty() ? 0 : length(high - low) / 2; }

  [[nodiscard]] std::array<Vector3, 8> corners() const {
    std::array<Vector3, 8> all;
    for (unsigned i = 0; i < 8; ++i)
      all[i] = {(i & 1U) != 0 ? high.x : low.x, (i & 2U) != 0 ? high.y : low.y, (i & 4U) != 0 ? high.z : low.z};
    return all;
  }
};

}  // namespace gavrel
