#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "Diagnosis/StructureCheck.h"

namespace gavrel {

namespace {

using Movement = std::array<double, 6>;  // of a rigid body: translations along and rotations about x, y, z

constexpr double lostPivot = 1e-12;  // of a matrix of directions with entries of about 1
constexpr double fit = 1e-9;         // of a length

using Products = std::array<Movement, 6>;

/// One connected part of the structure, and which of its rigid-body movements its supports hold.
struct Body {
  std::vector<std::int64_t> nodes;
  Vector3 centre;
  double radius = 0;
  std::size_t movements = 6;  // how many of the six, from the first on, its elements do not resist
  // Sums, over directions of its nodes, of the products of the displacements in each two movements: over all directions
  // (their rank leaves out the rotation of a straight part about itself) and over those that are held.
  Products all{};
  Products held{};
};

Vector3 findPlace(const Project& project, std::int64_t node) {
  const double* place = project.X_I->data() + 3 * node;
  return {place[0], place[1], place[2]};
}

/// The displacement of a node along direction 0, 1 or 2 in a unit of each movement of its part; rotations are about the
/// part's centre and measured at its radius.
Movement computeMovement(std::int64_t direction, const Vector3& place, const Body& part) {
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
int computeRank(Products products, std::size_t movements) {
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

/// The parts by their lowest node, with the movements that their elements do not resist.
class Bodies {
 public:
  Bodies(const Project& project, const std::vector<std::int64_t>& partOf) : number_(partOf.size()) {
    for (std::size_t node = 0; node < partOf.size(); ++node) {
      const auto lowest = static_cast<std::size_t>(partOf[node]);
      if (lowest == node) {
        number_[node] = all.size();
        all.emplace_back();
      }
      number_[node] = number_[lowest];
      all[number_[node]].nodes.push_back(static_cast<std::int64_t>(node));
    }
    for (const TrussElement& truss : *project.trussElements) {
      const Vector3 gap = findPlace(project, truss.startNodeId) - findPlace(project, truss.endNodeId);
      const Vector3 stored{truss.dXx, truss.dXy, truss.dXz};
      if (!(length(gap - stored) <= fit * length(stored))) leave(truss.startNodeId, 3);
    }
    // A beam resists rigid rotations. One whose end has the lower number also resists a translation along z, since the
    // other half of its matrix, which is not symmetric, is read then.
    for (const BeamElement& beam : *project.beamElements)
      leave(beam.startNodeId, beam.startNodeId < beam.endNodeId ? 3 : 2);
    for (Body& part : all) measure(project, part);
  }

  std::vector<Body> all;

 private:
  void leave(std::int64_t node, std::size_t movements) {
    Body& part = all[number_[static_cast<std::size_t>(node)]];
    part.movements = std::min(part.movements, movements);
  }

  static void measure(const Project& project, Body& part) {
    double n = 0;
    for (const std::int64_t node : part.nodes) {
      const Vector3 d = findPlace(project, node) - part.centre;
      ++n;
      part.centre = {part.centre.x + d.x / n, part.centre.y + d.y / n, part.centre.z + d.z / n};
    }
    for (const std::int64_t node : part.nodes)
      part.radius = std::max(part.radius, length(findPlace(project, node) - part.centre));
  }

  std::vector<std::size_t> number_;  // of each node's part
};

}  // namespace

Freedom Freedom::examine(const Project& assembled, const Connectivity& connectivity) {
  Freedom freedom;
  Bodies bodies(assembled, connectivity.partOf);
  for (Body& part : bodies.all) {
    for (const std::int64_t node : part.nodes) {
      for (std::int64_t direction = 0; direction < 3; ++direction) {
        const auto dof = static_cast<std::size_t>(dofsPerNode * node + direction);
        const bool restrained = (*assembled.D_I)[dof];
        const auto diagonal = static_cast<std::size_t>(assembled.H_II.starts[dof]);
        freedom.anyRestraint = freedom.anyRestraint || restrained;
        const bool held = restrained || std::abs(assembled.H_II.values[diagonal]) < Project::zeroPivot;
        const Movement along = computeMovement(direction, findPlace(assembled, node), part);
        for (std::size_t i = 0; i < along.size(); ++i)
          for (std::size_t j = 0; j < along.size(); ++j) {
            part.all[i][j] += along[i] * along[j];
            if (held) part.held[i][j] += along[i] * along[j];
          }
      }
    }
    const int free = computeRank(part.all, part.movements) - computeRank(part.held, part.movements);
    if (free > 0) freedom.parts.push_back({std::move(part.nodes), free});
  }
  return freedom;
}

Finding Freedom::describe(const Project& project, Finding::Consequence consequence) const {
  const Part& first = parts.front();
  const std::string ways = std::to_string(first.movements) + (first.movements == 1 ? " way" : " independent ways");
  const bool whole = std::ssize(first.nodes) == project.nodeCount();
  const std::string what =
      parts.size() > 1
          ? std::to_string(parts.size()) + " parts are free to move or turn as rigid bodies, the first, with " +
                listPositions("node", first.nodes) + ", in " + ways
          : "As a rigid body, " + (whole ? "the structure" : "the part with " + listPositions("node", first.nodes)) +
                " is free to move or turn in " + ways;
  std::vector<std::int64_t> nodes;
  for (const Part& part : parts) nodes.insert(nodes.end(), part.nodes.begin(), part.nodes.end());
  std::ranges::sort(nodes);
  return {consequence, anyRestraint ? "Too few supports" : "No supports",
          what + describeEnding(consequence) + "restrain more directions.", std::move(nodes)};
}

}  // namespace gavrel
