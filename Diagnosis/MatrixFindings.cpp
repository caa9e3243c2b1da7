#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include "Diagnosis/StructureCheck.h"

namespace {

using enum Finding::Consequence;
using Movement = std::array<double, 6>;  // of a rigid body: translations along and turns about x, y, z

constexpr double lostPivot = 1e-12;  // of a matrix of directions with entries of about 1

using Products = std::array<Movement, 6>;

/// One connected part of the structure, and what of its rigid movements is held.
struct Part {
  std::int64_t nodes = 0;
  Vector3 centre;
  double radius = 0;
  bool hasBeams = false;
  bool isRestrained = false;
  // Sums over the directions of its nodes of the products of how far each two movements go there: of all directions, of
  // which a turn of a straight part about itself is no movement, and of those held.
  Products all{};
  Products held{};
};

double entry(const std::vector<double>& X, std::int64_t i) {
  return X[static_cast<std::size_t>(i)];
}

Vector3 placeOf(const Project& project, std::int64_t node) {
  const auto& X = *project.X_I;
  return {entry(X, 3 * node), entry(X, 3 * node + 1), entry(X, 3 * node + 2)};
}

/// How far a unit of each movement of its part takes a node along direction 0, 1 or 2; turns are about the part's
/// centre and measured at its radius.
Movement movementAlong(std::int64_t direction, const Vector3& place, const Part& part) {
  const Vector3 r = place - part.centre;
  const double R = part.radius > 0 ? part.radius : 1;
  switch (direction) {
    case 0:
      return {1, 0, 0, 0, r.z / R, -r.y / R};
    case 1:
      return {0, 1, 0, -r.z / R, 0, r.x / R};
    default:
      return {0, 0, 1, r.y / R, -r.x / R, 0};
  }
}

/// Rank of the first rows and columns of a sum of products, by Gaussian elimination with complete pivoting.
int rankOf(Products products, std::size_t movements) {
  double largest = 0;
  for (std::size_t i = 0; i < movements; ++i) largest = std::max(largest, products[i][i]);
  std::array<bool, 6> done{};
  for (int rank = 0; rank < static_cast<int>(movements); ++rank) {
    std::size_t pivot = movements;
    for (std::size_t i = 0; i < movements; ++i)
      if (!done[i] && (pivot == movements || products[i][i] > products[pivot][pivot])) pivot = i;
    if (!(products[pivot][pivot] > lostPivot * largest)) return rank;
    done[pivot] = true;
    for (std::size_t i = 0; i < movements; ++i) {
      if (done[i]) continue;
      const double factor = products[i][pivot] / products[pivot][pivot];
      for (std::size_t j = 0; j < movements; ++j) products[i][j] -= factor * products[pivot][j];
    }
  }
  return static_cast<int>(movements);
}

std::map<std::int64_t, Part> partsOf(const Project& project, const std::vector<std::int64_t>& partOf) {
  std::map<std::int64_t, Part> parts;
  const auto each = [&](auto&& visit) {
    for (std::int64_t node = 0; node < project.nodeCount(); ++node)
      visit(parts[partOf[static_cast<std::size_t>(node)]], placeOf(project, node));
  };
  each([](Part& part, const Vector3& place) {
    const double n = static_cast<double>(++part.nodes);
    const Vector3 d = place - part.centre;
    part.centre = {part.centre.x + d.x / n, part.centre.y + d.y / n, part.centre.z + d.z / n};
  });
  each([](Part& part, const Vector3& place) { part.radius = std::max(part.radius, length(place - part.centre)); });
  for (const BeamElement& beam : *project.beamElements)
    parts[partOf[static_cast<std::size_t>(beam.startNodeId)]].hasBeams = true;
  return parts;
}

}  // namespace

std::optional<Finding> inspectSupports(const Project& project, const std::vector<std::int64_t>& partOf) {
  auto parts = partsOf(project, partOf);
  for (std::int64_t node = 0; node < project.nodeCount(); ++node) {
    Part& part = parts[partOf[static_cast<std::size_t>(node)]];
    for (std::int64_t direction = 0; direction < 3; ++direction) {
      const std::int64_t dof = dofsPerNode * node + direction;
      const bool restrained = (*project.D_I)[static_cast<std::size_t>(dof)];
      const auto diagonal = static_cast<std::size_t>(project.H_II.starts[static_cast<std::size_t>(dof)]);
      part.isRestrained = part.isRestrained || restrained;
      const bool held = restrained || std::abs(project.H_II.values[diagonal]) < Project::zeroPivot;
      const Movement along = movementAlong(direction, placeOf(project, node), part);
      for (std::size_t i = 0; i < along.size(); ++i)
        for (std::size_t j = 0; j < along.size(); ++j) {
          part.all[i][j] += along[i] * along[j];
          if (held) part.held[i][j] += along[i] * along[j];
        }
    }
  }

  std::vector<std::int64_t> unheld;
  int freedom = 0;
  bool anyRestraint = false;
  for (const auto& [lowest, part] : parts) {
    anyRestraint = anyRestraint || part.isRestrained;
    const std::size_t movements = part.hasBeams ? 3 : 6;
    const int free = rankOf(part.all, movements) - rankOf(part.held, movements);
    if (free == 0) continue;
    freedom = std::max(freedom, free);
    for (std::int64_t node = lowest; node < project.nodeCount(); ++node)
      if (partOf[static_cast<std::size_t>(node)] == lowest) unheld.push_back(node);
  }
  if (unheld.empty()) return std::nullopt;
  std::ranges::sort(unheld);
  const bool whole = std::ssize(unheld) == project.nodeCount();
  const std::string what = whole ? "the structure" : "the part with " + listed("node", unheld);
  return Finding{Meaningless, anyRestraint ? "Too few supports" : "No supports",
                 "As a rigid body, " + what + " is free to move or turn in " + std::to_string(freedom) +
                     (freedom == 1 ? " way" : " independent ways") +
                     ", and a solve ends the program or means nothing: restrain more directions.",
                 unheld};
}

std::optional<Finding> inspectFirstValue(const Project& project) {
  const double first = project.H_II.values.front();
  if (std::abs(first) >= Project::zeroPivot) return std::nullopt;
  return Finding{
      first > 0 ? Meaningless : EndsProgram,
      "No stiffness of node 0 along x",
      "No element gives node 0 stiffness along x, which the solver lends to all directions without any, and a "
      "solve ends the program or means nothing: let an element of node 0 run along x.",
      {0}};
}
