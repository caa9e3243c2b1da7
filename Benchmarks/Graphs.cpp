#include "Benchmarks/Graphs.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <random>
#include <tuple>
#include <utility>

#include "CommandLine/Structures/Bridge.h"
#include "CommandLine/Structures/Dome.h"
#include "CommandLine/Structures/Lattice.h"
#include "CommandLine/Structures/Tower.h"

namespace gavrel {

namespace {

using Random = std::mt19937;

/// Nodes and the pairs of them that are joined.
struct Mesh {
  std::vector<Vector3> nodes;
  std::vector<std::pair<std::int64_t, std::int64_t>> bars;

  std::int64_t node(const Vector3& place) {
    nodes.push_back(place);
    return std::ssize(nodes) - 1;
  }
  void bar(std::int64_t start, std::int64_t end) { bars.emplace_back(start, end); }
};

Mesh takeMesh(const Project& project) {
  Mesh mesh;
  for (std::int64_t i = 0; i < project.nodeCount(); ++i) mesh.node(*project.getNodeCoordinates(i));
  for (const TrussElement& bar : *project.trussElements) mesh.bar(bar.startNodeId, bar.endNodeId);
  return mesh;
}

PlacedGraph buildGraph(const Mesh& mesh) {
  std::vector<std::vector<std::int32_t>> neighbours(mesh.nodes.size());
  for (const auto& [a, b] : mesh.bars) {
    if (a == b) continue;
    neighbours[static_cast<std::size_t>(a)].push_back(static_cast<std::int32_t>(b));
    neighbours[static_cast<std::size_t>(b)].push_back(static_cast<std::int32_t>(a));
  }
  PlacedGraph placed;
  NodeGraph& graph = placed.graph;
  for (std::size_t i = 0; i < neighbours.size(); ++i) {
    auto& list = neighbours[i];
    std::ranges::sort(list);
    list.erase(std::unique(list.begin(), list.end()), list.end());
    graph.neighbours.insert(graph.neighbours.end(), list.begin(), list.end());
    graph.starts.push_back(static_cast<std::int32_t>(graph.neighbours.size()));
    graph.firstUnknown.push_back(graph.firstUnknown.back() + 3);
    graph.blocks.push_back(static_cast<std::int32_t>(i));
    const Vector3& place = mesh.nodes[i];
    placed.coordinates.insert(placed.coordinates.end(), {place.x, place.y, place.z});
  }
  return placed;
}

Mesh lattice(int nodesPerEdge) {
  Lattice lattice;
  lattice.nodesPerEdge = nodesPerEdge;
  return takeMesh(*lattice.build());
}

/// A net in the plane of x and y, with one diagonal in each square.
Mesh planeNet(int along, int across) {
  Mesh mesh;
  for (int i = 0; i < along; ++i)
    for (int j = 0; j < across; ++j) mesh.node({double(i), double(j), 0});
  const auto at = [&](int i, int j) { return std::int64_t{i} * across + j; };
  for (int i = 0; i < along; ++i) {
    for (int j = 0; j < across; ++j) {
      if (i + 1 < along) mesh.bar(at(i, j), at(i + 1, j));
      if (j + 1 < across) mesh.bar(at(i, j), at(i, j + 1));
      if (i + 1 < along && j + 1 < across) mesh.bar(at(i, j), at(i + 1, j + 1));
    }
  }
  return mesh;
}

/// Two square nets; each node of the lower one stands below the middle of a square of the upper one.
Mesh spaceFrame(int edge) {
  Mesh mesh;
  for (int i = 0; i < edge; ++i)
    for (int j = 0; j < edge; ++j) mesh.node({double(i), double(j), 0});
  const auto upper = [&](int i, int j) { return std::int64_t{i} * edge + j; };
  for (int i = 0; i + 1 < edge; ++i) {
    for (int j = 0; j + 1 < edge; ++j) {
      const std::int64_t lower = mesh.node({i + 0.5, j + 0.5, -0.7});
      for (const int di : {0, 1})
        for (const int dj : {0, 1}) mesh.bar(lower, upper(i + di, j + dj));
      if (j > 0) mesh.bar(lower - 1, lower);
      if (i > 0) mesh.bar(lower - (edge - 1), lower);
    }
  }
  for (int i = 0; i < edge; ++i) {
    for (int j = 0; j < edge; ++j) {
      if (i + 1 < edge) mesh.bar(upper(i, j), upper(i + 1, j));
      if (j + 1 < edge) mesh.bar(upper(i, j), upper(i, j + 1));
    }
  }
  return mesh;
}

Mesh cylinder(int rings, int segments) {
  Mesh mesh = planeNet(rings, segments);
  for (int ring = 0; ring < rings; ++ring) {
    const std::int64_t first = std::int64_t{ring} * segments;
    mesh.bar(first + segments - 1, first);
    if (ring + 1 < rings) mesh.bar(first + segments - 1, first + segments);
  }
  const double radius = segments / (2 * std::numbers::pi);
  for (Vector3& place : mesh.nodes) {
    const double angle = 2 * std::numbers::pi * place.y / segments;
    place = {radius * std::cos(angle), radius * std::sin(angle), place.x};
  }
  return mesh;
}

/// Turned about an axis and by an angle that have nothing to do with the structure.
Mesh rotated(Mesh mesh) {
  constexpr double a = 0.7;
  constexpr double b = 0.4;
  for (Vector3& p : mesh.nodes) {
    p = {std::cos(a) * p.x - std::sin(a) * p.y, std::sin(a) * p.x + std::cos(a) * p.y, p.z};
    p = {p.x, std::cos(b) * p.y - std::sin(b) * p.z, std::sin(b) * p.y + std::cos(b) * p.z};
  }
  return mesh;
}

Mesh sheared(Mesh mesh) {
  for (Vector3& p : mesh.nodes) p = {p.x + 0.8 * p.y + 0.5 * p.z, p.y + 0.6 * p.z, p.z};
  return mesh;
}

/// Random places in a cube, joined where they are closer than `radius`, the average distance being about one.
Mesh geometric(int count, double radius) {
  Random random(7);
  std::uniform_real_distribution<double> any(0, std::cbrt(count));
  Mesh mesh;
  std::map<std::tuple<int, int, int>, std::vector<std::int64_t>> cells;
  const auto cell = [&](double x) { return static_cast<int>(std::floor(x / radius)); };
  for (int i = 0; i < count; ++i) {
    const Vector3 p{any(random), any(random), any(random)};
    for (int dx = -1; dx <= 1; ++dx) {
      for (int dy = -1; dy <= 1; ++dy) {
        for (int dz = -1; dz <= 1; ++dz) {
          const auto near = cells.find({cell(p.x) + dx, cell(p.y) + dy, cell(p.z) + dz});
          if (near == cells.end()) continue;
          for (const std::int64_t other : near->second) {
            const Vector3& q = mesh.nodes[static_cast<std::size_t>(other)];
            if (std::hypot(p.x - q.x, p.y - q.y, p.z - q.z) < radius) mesh.bar(other, i);
          }
        }
      }
    }
    cells[{cell(p.x), cell(p.y), cell(p.z)}].push_back(mesh.node(p));
  }
  return mesh;
}

/// Any nodes joined with any.
Mesh meaningless(int count, int barsOfNode) {
  Random random(8);
  std::uniform_real_distribution<double> any(0, 1);
  std::uniform_int_distribution<std::int64_t> node(0, count - 1);
  Mesh mesh;
  for (int i = 0; i < count; ++i) mesh.node({any(random), any(random), any(random)});
  for (int i = 0; i < count * barsOfNode / 2; ++i) {
    const std::int64_t start = node(random);
    mesh.bar(start, node(random));
  }
  return mesh;
}

/// Lattices without a bar between them, one inside the other.
Mesh severalParts(int nodesPerEdge) {
  Mesh all;
  for (int part = 0; part < 4; ++part) {
    const Mesh mesh = lattice(nodesPerEdge - 3 * part);
    const std::int64_t first = std::ssize(all.nodes);
    for (const Vector3& p : mesh.nodes) all.node({p.x + 0.3 * part, p.y + 0.3 * part, p.z});
    for (const auto& [a, b] : mesh.bars) all.bar(first + a, first + b);
  }
  return all;
}

Mesh atOnePoint(Mesh mesh) {
  std::ranges::fill(mesh.nodes, Vector3{});
  return mesh;
}

/// A chain in space, all of whose nodes are joined with one more.
Mesh star(int count) {
  Mesh mesh;
  mesh.node({});
  for (int i = 1; i < count; ++i) {
    mesh.node({std::cos(0.1 * i), std::sin(0.1 * i), 0.01 * i});
    mesh.bar(0, i);
    if (i > 1) mesh.bar(i - 1, i);
  }
  return mesh;
}

}  // namespace

std::vector<NamedGraph> listGraphs() {
  std::vector<NamedGraph> graphs;
  const auto add = [&](const std::string& name, std::function<Mesh()> build) {
    graphs.push_back({name, [build = std::move(build)] { return buildGraph(build()); }});
  };
  for (const int n : {10, 20, 30, 40}) add("lattice " + std::to_string(n), [n] { return lattice(n); });
  add("lattice 30, rotated", [] { return rotated(lattice(30)); });
  add("lattice 30, sheared", [] { return sheared(lattice(30)); });
  add("bridge of 10000 panels", [] {
    Bridge bridge;
    bridge.panels = 10000;
    bridge.span = 50000;
    return takeMesh(*bridge.build());
  });
  add("dome of 100 rings", [] {
    Dome dome;
    dome.rings = 100;
    dome.segments = 300;
    return takeMesh(*dome.build());
  });
  add("tower of 100000 sections", [] {
    Tower tower;
    tower.sections = 100000;
    tower.height = 500000;
    return takeMesh(*tower.build());
  });
  add("plane net", [] { return planeNet(200, 200); });
  add("plane net, rotated", [] { return rotated(planeNet(200, 200)); });
  add("long plane net, rotated", [] { return rotated(planeNet(1000, 40)); });
  add("space frame", [] { return spaceFrame(140); });
  add("space frame, rotated", [] { return rotated(spaceFrame(140)); });
  add("cylinder", [] { return cylinder(150, 200); });
  add("cylinder, rotated", [] { return rotated(cylinder(150, 200)); });
  add("cylinder, sheared", [] { return sheared(cylinder(150, 200)); });
  add("near random points", [] { return geometric(20000, 1.5); });
  add("random bars", [] { return meaningless(2000, 4); });
  add("four parts", [] { return severalParts(20); });
  add("all at one point", [] { return atOnePoint(lattice(20)); });
  add("star", [] { return star(20000); });
  return graphs;
}

}  // namespace gavrel
