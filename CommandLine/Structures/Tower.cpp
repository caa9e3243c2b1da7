#include "CommandLine/Structures/Tower.h"

#include <array>

namespace gavrel {

namespace {

constexpr std::size_t legs = 4;
constexpr std::array<std::array<int, 2>, legs> corners{{{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}};

using Level = std::array<std::int64_t, legs>;

Level addLevel(StructureBuilder& builder, double width, double z) {
  Level level{};
  for (std::size_t leg = 0; leg < legs; ++leg)
    level[leg] = builder.node({corners[leg][0] * width / 2, corners[leg][1] * width / 2, z});
  return level;
}

void addSection(StructureBuilder& builder, const Level& below, const Level& above, bool strutDiagonals) {
  for (std::size_t leg = 0; leg < legs; ++leg) {
    const std::size_t next = (leg + 1) % legs;
    builder.bar(below[leg], above[leg]);
    builder.bar(below[leg], above[next], strutDiagonals);
    builder.bar(below[next], above[leg], strutDiagonals);
    builder.bar(above[leg], above[next]);
  }
  builder.bar(above[0], above[2]);
}

}  // namespace

std::shared_ptr<Project> Tower::build() const {
  StructureBuilder builder("Lattice tower, " + std::to_string(sections) + " sections", bars);
  Level level = addLevel(builder, baseWidth, 0);
  for (const std::int64_t foot : level) builder.restrain(foot);
  for (int section = 1; section <= sections; ++section) {
    const double part = static_cast<double>(section) / sections;
    const Level above = addLevel(builder, baseWidth + part * (topWidth - baseWidth), part * height);
    addSection(builder, level, above, strutDiagonals);
    level = above;
  }
  for (const std::int64_t node : level) builder.load(node, totalLoad, 1.0 / legs);
  return builder.project();
}

}  // namespace gavrel
