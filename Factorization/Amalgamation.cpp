#include "Factorization/Amalgamation.h"

#include <algorithm>
#include <utility>

namespace gavrel {

namespace {

constexpr std::int32_t none = -1;

/// Seconds, in a unit of its own, that a front takes: its multiplications, which narrow fronts do more slowly, the
/// entries that are cleared, added to the parent and read again, and what every front costs.
double estimateCost(std::int64_t columns, std::int64_t rows) {
  constexpr double narrowness = 16;
  constexpr double perEntry = 10;
  constexpr double perFront = 20000;
  const auto w = static_cast<double>(columns);
  const auto r = static_cast<double>(rows);
  const double operations = w * w * w / 3 + w * w * r + w * r * r;
  return operations * (1 + narrowness / w) + perEntry * (w + r) * (w + r) + perFront;
}

/// Maximal groups of vertices along a path of the tree whose columns differ by the vertices themselves only.
std::vector<Group> groupEqualColumns(const NodeGraph& graph, const EliminationTree& tree) {
  std::vector<Group> groups;
  std::vector<std::int32_t> groupOf(tree.order.size());
  for (std::int32_t j = 0; j < graph.size(); ++j) {
    const std::int64_t unknowns = graph.unknowns(tree.order[j]);
    const bool follows = j > 0 && tree.parent[j - 1] == j && tree.below[j - 1] == tree.below[j] + unknowns;
    if (!follows) groups.push_back({{}, 0, 0, none});
    Group& group = groups.back();
    group.vertices.push_back(tree.order[j]);
    group.columns += unknowns;
    group.rows = tree.below[j];
    groupOf[j] = static_cast<std::int32_t>(groups.size()) - 1;
  }
  std::int32_t last = none;
  for (Group& group : groups) {
    last += static_cast<std::int32_t>(group.vertices.size());
    if (tree.parent[last] != none) group.parent = groupOf[tree.parent[last]];
  }
  return groups;
}

}  // namespace

std::vector<Group> groupVertices(const NodeGraph& graph, const EliminationTree& tree) {
  std::vector<Group> groups = groupEqualColumns(graph, tree);
  const auto size = static_cast<std::int32_t>(groups.size());
  std::vector<std::vector<std::int32_t>> children(groups.size());
  std::vector<std::vector<std::int32_t>> merged(groups.size());  // groups that were merged into each, in order
  std::vector<bool> isMerged(groups.size());
  for (std::int32_t g = 0; g < size; ++g) {
    Group& group = groups[g];
    std::vector<std::int32_t> candidates = std::exchange(children[g], {});
    // The widest child adds the fewest zeros.
    std::ranges::sort(candidates, std::ranges::greater(), [&](std::int32_t c) { return std::pair(groups[c].rows, c); });
    for (std::size_t i = 0; i < candidates.size(); ++i) {
      const std::int32_t c = candidates[i];
      const Group& child = groups[c];
      const double apart = estimateCost(child.columns, child.rows) + estimateCost(group.columns, group.rows);
      if (estimateCost(child.columns + group.columns, group.rows) > apart) {
        children[g].push_back(c);
        continue;
      }
      group.columns += child.columns;
      merged[g].push_back(c);
      isMerged[c] = true;
      candidates.insert(candidates.end(), children[c].begin(), children[c].end());
      children[c].clear();
    }
    if (group.parent != none) children[group.parent].push_back(g);
  }

  // What is left, children before parents.
  std::vector<Group> result;
  std::vector<std::pair<std::int32_t, std::size_t>> path;  // a group and its next child
  std::vector<std::int32_t> newNumber(groups.size(), none);
  for (std::int32_t root = 0; root < size; ++root) {
    if (isMerged[root] || groups[root].parent != none) continue;
    path.emplace_back(root, 0);
    while (!path.empty()) {
      auto& [g, next] = path.back();
      if (next < children[g].size()) {
        path.emplace_back(children[g][next++], 0);
        continue;
      }
      std::vector<std::int32_t> pieces{g};
      for (std::size_t i = 0; i < pieces.size(); ++i)
        pieces.insert(pieces.end(), merged[pieces[i]].begin(), merged[pieces[i]].end());
      std::ranges::sort(pieces);
      Group whole{{}, groups[g].columns, groups[g].rows, none};
      for (const std::int32_t piece : pieces)
        whole.vertices.insert(whole.vertices.end(), groups[piece].vertices.begin(), groups[piece].vertices.end());
      for (const std::int32_t child : children[g])
        result[newNumber[child]].parent = static_cast<std::int32_t>(result.size());
      newNumber[g] = static_cast<std::int32_t>(result.size());
      result.push_back(std::move(whole));
      path.pop_back();
    }
  }
  return result;
}

}  // namespace gavrel
