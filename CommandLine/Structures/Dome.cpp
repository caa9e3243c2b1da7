#include "CommandLine/Structures/Dome.h"

#include <cmath>
#include <numbers>
#include <vector>

namespace gavrel {

namespace {

using Ring = std::vector<std::int64_t>;

/// A ring at the angle `polar` from the crown of a sphere, whose lowest ring lies at z = 0.
Ring addRing(StructureBuilder& builder, const Dome& dome, double radius, double polar) {
  Ring ring;
  const double z = radius * std::cos(polar) - (radius - dome.rise);
  for (int segment = 0; segment < dome.segments; ++segment) {
    const double angle = 2 * std::numbers::pi * segment / dome.segments;
    const double outward = radius * std::sin(polar);
    ring.push_back(builder.node({outward * std::cos(angle), outward * std::sin(angle), z}));
  }
  return ring;
}

void joinRings(StructureBuilder& builder, const Ring& upper, const Ring& lower) {
  for (std::size_t i = 0; i < upper.size(); ++i) {
    const std::size_t next = (i + 1) % upper.size();
    builder.bar(upper[i], upper[next]);
    builder.bar(upper[i], lower[i]);
    builder.bar(upper[i], lower[next]);
    builder.bar(upper[next], lower[i]);
  }
}

}  // namespace

std::shared_ptr<Project> Dome::build() const {
  StructureBuilder builder("Dome, " + std::to_string(rings) + " rings of " + std::to_string(segments), bars);
  const double radius = (span * span / 4 + rise * rise) / (2 * rise);
  const double edge = std::atan2(span / 2, radius - rise);
  const std::int64_t crown = builder.node({0, 0, rise});
  Ring upper;
  for (int number = 1; number <= rings; ++number) {
    const Ring lower = addRing(builder, *this, radius, edge * number / rings);
    if (number == 1) {
      for (const std::int64_t node : lower) builder.bar(crown, node);
    } else {
      joinRings(builder, upper, lower);
    }
    upper = lower;
  }
  const auto loaded = crown + 1 + static_cast<std::int64_t>(segments) * (rings - 1);
  const double share = 1.0 / static_cast<double>(loaded);
  for (std::int64_t node = 0; node < loaded; ++node) builder.load(node, totalLoad, share);
  for (const std::int64_t node : upper) builder.restrain(node);
  return builder.project();
}

}  // namespace gavrel
