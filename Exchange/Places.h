#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include "DataModel/Vector3.h"

namespace gavrel {

/// The distance between two points; exact even where the squares of coordinates are too large or too small for a
/// double.
[[nodiscard]] double distance(const Vector3& a, const Vector3& b);

/// Finds nodes by their places: an existing node within the tolerance or, if there is none, a new one.
///
/// Existing nodes may lie arbitrarily close together, so they are kept in a balanced tree of boxes. New ones are never
/// closer than the tolerance, so they are kept in cubes with an edge of a few tolerances, which hold few each. The time
/// to find a place hardly grows with the number of nodes.
class Places {
 public:
  /// Nodes are numbered from 0 in the order of their `places`. The tolerance is above 0.
  Places(const std::vector<Vector3>& places, double tolerance);

  /// The nearest node that is no further away than the tolerance, of equally near ones the first; otherwise a new node,
  /// numbered next.
  [[nodiscard]] std::int64_t findOrAddNode(const Vector3& place);

  /// How many places and boxes it has compared so far.
  [[nodiscard]] std::int64_t comparisons() const { return comparisons_; }

 private:
  struct Node {
    std::int64_t number = 0;
    Vector3 place;
  };
  struct Box {
    Vector3 low;
    Vector3 high;
    std::int64_t firstNumber = 0;
  };
  /// Compared by distance first.
  struct Nearest {
    double distance;
    std::int64_t number;
    auto operator<=>(const Nearest&) const = default;
  };
  /// Numbers of a cube along the axes, with more digits and a larger range than a double, so that any two places
  /// further apart than a cube's edge have different ones.
  using Cube = std::array<long double, 3>;
  struct Hash {
    std::size_t operator()(const Cube& cube) const;
  };

  void enclose(std::size_t box, std::size_t begin, std::size_t end);
  void searchTree(std::size_t box, std::size_t begin, std::size_t end, const Vector3& place, Nearest& nearest);
  [[nodiscard]] Nearest nearestIn(std::size_t box, const Vector3& place);
  void searchCubes(const Vector3& place, Nearest& nearest);
  [[nodiscard]] Cube cubeAt(const Vector3& place, long double shift) const;
  void compare(const Node& node, const Vector3& place, Nearest& nearest);

  double tolerance_;
  std::int64_t count_;
  std::int64_t comparisons_ = 0;
  std::vector<Node> tree_;  // in the order of the leaves
  std::vector<Box> boxes_;  // the parts of box i are 2i + 1 and 2i + 2
  std::unordered_map<Cube, std::vector<Node>, Hash> cubes_;
};

}  // namespace gavrel
