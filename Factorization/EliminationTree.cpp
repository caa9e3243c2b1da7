#include "Factorization/EliminationTree.h"

#include <numeric>
#include <utility>

namespace gavrel {

namespace {

using Numbers = std::vector<std::int32_t>;
constexpr std::int32_t none = -1;

Numbers invert(const Numbers& order) {
  Numbers place(order.size());
  for (std::size_t i = 0; i < order.size(); ++i) place[order[i]] = static_cast<std::int32_t>(i);
  return place;
}

/// The parent of each place (Liu 1990), with shortened paths.
Numbers findParents(const NodeGraph& graph, const Numbers& order, const Numbers& place) {
  Numbers parent(order.size(), none);
  Numbers ancestor(order.size(), none);
  for (std::int32_t k = 0; k < graph.size(); ++k) {
    for (const std::int32_t other : graph.neighboursAt(order[k])) {
      for (std::int32_t i = place[other]; i != none && i < k;) {
        const std::int32_t next = std::exchange(ancestor[i], k);
        if (next == none) parent[i] = k;
        i = next;
      }
    }
  }
  return parent;
}

/// The places in an order in which children come before their parents, each subtree in one piece.
Numbers findPostorder(const Numbers& parent) {
  const auto size = static_cast<std::int32_t>(parent.size());
  Numbers firstChild(parent.size(), none);
  Numbers sibling(parent.size(), none);
  for (std::int32_t i = size - 1; i >= 0; --i) {
    if (parent[i] == none) continue;
    sibling[i] = std::exchange(firstChild[parent[i]], i);
  }
  Numbers result;
  result.reserve(parent.size());
  Numbers path;
  for (std::int32_t root = 0; root < size; ++root) {
    if (parent[root] != none) continue;
    path.push_back(root);
    while (!path.empty()) {
      const std::int32_t child = std::exchange(firstChild[path.back()], none);
      if (child == none) {
        result.push_back(path.back());
        path.pop_back();
        continue;
      }
      firstChild[path.back()] = sibling[child];
      path.push_back(child);
    }
  }
  return result;
}

/// Counts the unknowns below the diagonal in each column (Gilbert, Ng, Peyton 1994). The places are in postorder.
std::vector<std::int64_t> countColumns(const NodeGraph& graph, const EliminationTree& tree) {
  const auto size = graph.size();
  std::vector<std::int64_t> count(size);
  Numbers first(size, none);  // first descendant of each place
  for (std::int32_t j = 0; j < size; ++j) {
    if (first[j] == none) count[j] = graph.unknowns(tree.order[j]);
    for (std::int32_t i = j; i != none && first[i] == none; i = tree.parent[i]) first[i] = j;
  }
  Numbers ancestor(size);
  std::iota(ancestor.begin(), ancestor.end(), 0);
  Numbers lastFirst(size, none);  // first descendant of the row's last leaf
  Numbers lastLeaf(size, none);
  const auto findTop = [&ancestor](std::int32_t place) {
    while (ancestor[place] != place) place = ancestor[place] = ancestor[ancestor[place]];
    return place;
  };
  for (std::int32_t j = 0; j < size; ++j) {
    if (tree.parent[j] != none) count[tree.parent[j]] -= graph.unknowns(tree.order[j]);
    for (const std::int32_t other : graph.neighboursAt(tree.order[j])) {
      const std::int32_t row = tree.place[other];
      if (row <= j || first[j] <= lastFirst[row]) continue;
      lastFirst[row] = first[j];
      count[j] += graph.unknowns(other);
      const std::int32_t before = std::exchange(lastLeaf[row], j);
      if (before != none) count[findTop(before)] -= graph.unknowns(other);
    }
    if (tree.parent[j] != none) ancestor[j] = tree.parent[j];
  }
  for (std::int32_t j = 0; j < size; ++j)
    if (tree.parent[j] != none) count[tree.parent[j]] += count[j];
  for (std::int32_t j = 0; j < size; ++j) count[j] -= graph.unknowns(tree.order[j]);
  return count;
}

}  // namespace

EliminationTree EliminationTree::grow(const NodeGraph& graph, std::vector<std::int32_t> order) {
  EliminationTree tree;
  const Numbers parent = findParents(graph, order, invert(order));
  const Numbers postorder = findPostorder(parent);
  const Numbers newPlace = invert(postorder);
  for (const std::int32_t old : postorder) {
    tree.order.push_back(order[old]);
    tree.parent.push_back(parent[old] == none ? none : newPlace[parent[old]]);
  }
  tree.place = invert(tree.order);
  tree.below = countColumns(graph, tree);
  return tree;
}

double EliminationTree::operations(const NodeGraph& graph) const {
  double sum = 0;
  for (std::size_t j = 0; j < order.size(); ++j) {
    auto rows = static_cast<double>(below[j]);
    for (std::int32_t i = graph.unknowns(order[j]); i > 0; --i) {
      const double length = rows + i;
      sum += length * length;
    }
  }
  return sum;
}

}  // namespace gavrel
