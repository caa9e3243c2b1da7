// Compares the orders of elimination for structures of many shapes: operations and entries of the factor, and the time
// to find the order and its tree.

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <string>
#include <string_view>

#include "Benchmarks/Graphs.h"
#include "Benchmarks/Stopwatch.h"
#include "Factorization/ChooseOrder.h"
#include "Factorization/EliminationTree.h"
#include "Factorization/Ordering.h"

using namespace gavrel;

namespace {

/// Entries of the factor without supernodes.
double countEntries(const NodeGraph& graph, const EliminationTree& tree) {
  double sum = 0;
  for (std::size_t j = 0; j < tree.order.size(); ++j) {
    const double unknowns = graph.unknowns(tree.order[j]);
    sum += unknowns * static_cast<double>(tree.below[j]) + unknowns * (unknowns + 1) / 2;
  }
  return sum;
}

/// Prints operations, entries and milliseconds, the least of three.
template <class GrowTree>
void printOrder(const NodeGraph& graph, GrowTree&& growTree) {
  EliminationTree tree;
  double least = 1e300;
  for (int repetition = 0; repetition < 3; ++repetition) {
    Stopwatch watch;
    tree = growTree();
    least = std::min(least, watch.lap());
  }
  std::printf("  %9.3e %8.2e %7.1f", tree.operations(graph), countEntries(graph, tree), least * 1e3);
  std::fflush(stdout);
}

}  // namespace

/// The argument is a part of the names of the structures that are wanted.
int main(int argc, char** argv) {
  const std::string_view wanted = argc > 1 ? argv[1] : "";
  std::printf("%-26s %7s  %26s  %26s  %26s\n", "", "", "METIS", "coordinates", "chosen");
  std::printf("%-26s %7s  %9s %8s %7s  %9s %8s %7s  %9s %8s %7s\n", "structure", "nodes", "operat.", "entries", "ms",
              "operat.", "entries", "ms", "operat.", "entries", "ms");
  for (const NamedGraph& named : listGraphs()) {
    if (named.name.find(wanted) == std::string::npos) continue;
    const std::atomic<bool> stop = false;
    const auto [graph, coordinates] = named.build();
    std::printf("%-26s %7d", named.name.c_str(), graph.size());
    printOrder(graph, [&graph = graph] { return EliminationTree::grow(graph, dissectByMetis(graph)); });
    printOrder(graph, [&graph = graph, &coordinates = coordinates, &stop] {
      return EliminationTree::grow(graph, dissectByCoordinates(graph, coordinates, stop));
    });
    printOrder(graph,
               [&graph = graph, &coordinates = coordinates, &stop] { return chooseOrder(graph, coordinates, stop); });
    std::printf("\n");
  }
}
