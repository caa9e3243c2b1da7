#include "CommandLine/Structures/Lattice.h"

#include <array>
#include <string>

namespace gavrel {

namespace {

/// Steps from a node to the neighbours of higher number that a bar joins it to: along the axes and across the faces.
constexpr std::array<std::array<int, 3>, 9> barSteps{
    {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 0}, {1, -1, 0}, {1, 0, 1}, {1, 0, -1}, {0, 1, 1}, {0, 1, -1}}};

}  // namespace

std::shared_ptr<Project> Lattice::build() const {
  const int n = nodesPerEdge;
  const std::string edge = std::to_string(n);
  StructureBuilder builder("Lattice " + edge + " x " + edge + " x " + edge, bars);
  const auto inside = [n](int i) { return i >= 0 && i < n; };
  const auto number = [n](int i, int j, int k) { return (static_cast<std::int64_t>(i) * n + j) * n + k; };
  const auto forEachPlace = [n](auto&& visit) {
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < n; ++j)
        for (int k = 0; k < n; ++k) visit(i, j, k);
  };

  forEachPlace([&](int i, int j, int k) { builder.node({i * spacing, j * spacing, k * spacing}); });
  forEachPlace([&](int i, int j, int k) {
    for (const auto& [di, dj, dk] : barSteps) {
      if (inside(i + di) && inside(j + dj) && inside(k + dk))
        builder.bar(number(i, j, k), number(i + di, j + dj, k + dk));
    }
  });

  const double share = 1.0 / (static_cast<double>(n) * n);
  forEachPlace([&](int i, int j, int k) {
    if (i == 0) builder.restrain(number(i, j, k));
    if (i == n - 1) builder.load(number(i, j, k), totalLoad, share);
  });
  return builder.project();
}

}  // namespace gavrel
