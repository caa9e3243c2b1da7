#include "CommandLine/Structures/Bridge.h"

#include <array>
#include <vector>

namespace gavrel {

namespace {

/// The nodes of one truss: lower ones 0 to panels, upper ones 1 to panels - 1 (index 0 is unused).
struct Side {
  std::vector<std::int64_t> lower;
  std::vector<std::int64_t> upper;
};

Side addTruss(StructureBuilder& builder, const Bridge& bridge, double y) {
  Side side;
  const double panel = bridge.span / bridge.panels;
  for (int i = 0; i <= bridge.panels; ++i) side.lower.push_back(builder.node({i * panel, y, 0}));
  side.upper.push_back(-1);
  for (int i = 1; i < bridge.panels; ++i) side.upper.push_back(builder.node({i * panel, y, bridge.height}));

  const auto last = static_cast<std::size_t>(bridge.panels);
  for (std::size_t i = 0; i < last; ++i) builder.bar(side.lower[i], side.lower[i + 1]);
  builder.bar(side.lower[0], side.upper[1]);
  builder.bar(side.lower[last], side.upper[last - 1]);
  for (std::size_t i = 1; i < last; ++i) builder.bar(side.lower[i], side.upper[i]);
  for (std::size_t i = 1; i + 1 < last; ++i) {
    builder.bar(side.upper[i], side.upper[i + 1]);
    // The diagonals fall towards the middle of the span, where the load pulls them.
    const bool firstHalf = 2 * i < last;
    builder.bar(firstHalf ? side.upper[i] : side.lower[i], firstHalf ? side.lower[i + 1] : side.upper[i + 1]);
  }
  return side;
}

void joinTrusses(StructureBuilder& builder, const std::array<Side, 2>& sides) {
  const auto& [left, right] = sides;
  const std::size_t last = left.lower.size() - 1;
  for (std::size_t i = 0; i <= last; ++i) builder.bar(left.lower[i], right.lower[i]);
  for (std::size_t i = 0; i < last; ++i) builder.bar(left.lower[i], right.lower[i + 1]);
  for (std::size_t i = 1; i < last; ++i) {
    builder.bar(left.upper[i], right.upper[i]);
    builder.bar(left.lower[i], right.upper[i]);
    if (i + 1 < last) builder.bar(left.upper[i], right.upper[i + 1]);
  }
}

}  // namespace

std::shared_ptr<Project> Bridge::build() const {
  StructureBuilder builder("Truss bridge, " + std::to_string(panels) + " panels", bars);
  const std::array sides{addTruss(builder, *this, 0), addTruss(builder, *this, width)};
  joinTrusses(builder, sides);

  const double share = 1.0 / (2.0 * (panels - 1));
  for (const Side& side : sides) {
    builder.restrain(side.lower.front());
    builder.roller(side.lower.back());
    for (std::size_t i = 1; i + 1 < side.lower.size(); ++i) builder.load(side.lower[i], totalLoad, share);
  }
  return builder.project();
}

}  // namespace gavrel
