#include "Factorization/ChooseOrder.h"

#include <cmath>
#include <cstddef>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include "Factorization/Ordering.h"

namespace gavrel {

namespace {

/// Operations of a factorization in the time that METIS takes for a vertex or a neighbour: 0.4 µs, at 1e11 a second.
constexpr double metisOperations = 4e4;

/// METIS may take this part of a factorization's time: it saves nothing on regular structures, up to a quarter on
/// others.
constexpr double metisPart = 1.0 / 16;

/// Where the coordinates say nothing about the structure, METIS saves most of the operations, and may take this part.
constexpr double metisPartOfBadOrder = 1.0 / 2;

/// Good orders of structures need fewer operations than this times the square of their unknowns; lattices need 20.
constexpr double structureOperations = 30;

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

/// None if METIS has not enough memory.
std::optional<EliminationTree> growByMetis(const NodeGraph& graph, const std::atomic<bool>& stop) {
  giveUpIf(stop);
  auto order = dissectByMetis(graph);
  giveUpIf(stop);
  if (order.empty()) return std::nullopt;
  return EliminationTree::grow(graph, std::move(order));
}

}  // namespace

EliminationTree chooseOrder(const NodeGraph& graph, std::span<const double> coordinates,
                            const std::atomic<bool>& stop) {
  const std::vector<double> selected = selectCoordinates(graph, coordinates);
  if (selected.empty()) {
    if (auto tree = growByMetis(graph, stop)) return std::move(*tree);
    throw std::bad_alloc();
  }
  EliminationTree tree = EliminationTree::grow(graph, dissectByCoordinates(graph, selected, stop));
  const double operations = tree.operations(graph);
  const auto unknowns = static_cast<double>(graph.firstUnknown.back());
  const bool isBad = operations > structureOperations * unknowns * unknowns;
  const auto entries = static_cast<double>(graph.blocks.size() + graph.neighbours.size());
  if (entries * metisOperations > operations * (isBad ? metisPartOfBadOrder : metisPart)) return tree;
  auto other = growByMetis(graph, stop);
  return other && other->operations(graph) < operations ? std::move(*other) : tree;
}

}  // namespace gavrel
