#include "Factorization/ChooseOrder.h"

#include <cmath>
#include <cstddef>
#include <new>
#include <vector>

#include "Factorization/Ordering.h"

namespace gavrel {

namespace {

/// Operations of a factorization in the time that METIS takes for a vertex or a neighbour.
constexpr double metisOperations = 2e4;

/// METIS may take this part of a factorization's time to look for a better order than the coordinates gave.
constexpr double metisPart = 1.0 / 32;

/// Where the coordinates say nothing about the structure, METIS finds a far better order, and may take this part.
constexpr double metisPartOfBadOrder = 1.0 / 4;

/// Nested dissection of a mesh in space needs fewer operations than this times the square of its unknowns.
constexpr double meshOperations = 40;

/// Coordinates of each vertex; empty if some are missing or not finite.
std::vector<double> selectCoordinates(const NodeGraph& graph, std::span<const double> coordinates) {
  std::vector<double> result;
  result.reserve(3 * graph.blocks.size());
  for (const std::int32_t block : graph.blocks) {
    for (std::size_t i = 3 * std::size_t(block); i < 3 * std::size_t(block) + 3; ++i) {
      if (i >= coordinates.size() || !std::isfinite(coordinates[i])) return {};
      result.push_back(coordinates[i]);
    }
  }
  return result;
}

EliminationTree growByMetis(const NodeGraph& graph) {
  auto order = dissectByMetis(graph);
  if (order.empty()) throw std::bad_alloc();
  return EliminationTree::grow(graph, std::move(order));
}

}  // namespace

EliminationTree chooseOrder(const NodeGraph& graph, std::span<const double> coordinates,
                            const std::atomic<bool>& stop) {
  const std::vector<double> selected = selectCoordinates(graph, coordinates);
  if (selected.empty()) return growByMetis(graph);
  EliminationTree tree = EliminationTree::grow(graph, dissectByCoordinates(graph, selected, stop));
  const double operations = tree.operations(graph);
  const auto unknowns = static_cast<double>(graph.firstUnknown.back());
  const double part = operations > meshOperations * unknowns * unknowns ? metisPartOfBadOrder : metisPart;
  const auto entries = static_cast<double>(graph.blocks.size() + graph.neighbours.size());
  if (entries * metisOperations > operations * part) return tree;
  giveUpIf(stop);
  EliminationTree other = growByMetis(graph);
  return other.operations(graph) < operations ? other : tree;
}

}  // namespace gavrel
