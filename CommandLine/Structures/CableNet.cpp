#include "CommandLine/Structures/CableNet.h"

namespace gavrel {

std::shared_ptr<Project> CableNet::build() const {
  const std::string size = std::to_string(cells);
  StructureBuilder builder((sag < 0 ? "Vault, " : "Cable net, ") + size + " x " + size + " cells", bars);
  const auto onEdge = [this](int i) { return i == 0 || i == cells; };
  const auto number = [this](int i, int j) { return static_cast<std::int64_t>(i) * (cells + 1) + j; };
  const auto height = [this](double s, double t) { return -sag * 16 * s * (1 - s) * t * (1 - t); };
  const auto bar = [&](int i, int j, int di, int dj) {
    if (i + di <= cells && j + dj <= cells) builder.bar(number(i, j), number(i + di, j + dj));
  };

  for (int i = 0; i <= cells; ++i)
    for (int j = 0; j <= cells; ++j) {
      const double s = static_cast<double>(i) / cells;
      const double t = static_cast<double>(j) / cells;
      builder.node({s * span, t * span, height(s, t)});
    }
  for (int i = 0; i <= cells; ++i)
    for (int j = 0; j <= cells; ++j) {
      bar(i, j, 1, 0);
      bar(i, j, 0, 1);
      bar(i, j, 1, 1);
    }

  const double share = 1.0 / (static_cast<double>(cells - 1) * (cells - 1));
  for (int i = 0; i <= cells; ++i)
    for (int j = 0; j <= cells; ++j) {
      if (onEdge(i) || onEdge(j)) {
        builder.restrain(number(i, j));
      } else {
        builder.load(number(i, j), totalLoad, share);
      }
    }
  return builder.project();
}

}  // namespace gavrel
