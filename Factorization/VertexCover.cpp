#include "Factorization/VertexCover.h"

namespace gavrel {

namespace {

constexpr std::int32_t none = -1;

class Matching {
 public:
  explicit Matching(const BoundaryGraph& graph)
      : graph_(graph),
        ofLeft_(graph.lefts(), none),
        ofRight_(graph.rights, none),
        layer_(graph.lefts()),
        next_(graph.lefts()) {
    for (std::int32_t left = 0; left < graph_.lefts(); ++left) {
      for (auto k = graph_.starts[left]; k < graph_.starts[left + 1] && ofLeft_[left] == none; ++k)
        if (ofRight_[graph_.partners[k]] == none) join(left, graph_.partners[k]);
    }
    while (findLayers()) {
      next_.assign(graph_.starts.begin(), graph_.starts.end() - 1);
      for (std::int32_t left = 0; left < graph_.lefts(); ++left)
        if (ofLeft_[left] == none) augment(left);
    }
  }

  /// After the last search, layers stand at what alternating paths from unmatched vertices on the left reach.
  [[nodiscard]] VertexCover cover() const {
    VertexCover found{std::vector<bool>(ofLeft_.size()), std::vector<bool>(ofRight_.size())};
    for (std::int32_t left = 0; left < graph_.lefts(); ++left) {
      found.left[left] = layer_[left] == none;
      for (auto k = graph_.starts[left]; k < graph_.starts[left + 1] && layer_[left] != none; ++k)
        found.right[graph_.partners[k]] = true;
    }
    return found;
  }

 private:
  void join(std::int32_t left, std::int32_t right) {
    ofLeft_[left] = right;
    ofRight_[right] = left;
  }

  /// Numbers the vertices on the left by their distance from unmatched ones. False if no path can be augmented.
  bool findLayers() {
    layer_.assign(layer_.size(), none);
    std::vector<std::int32_t> reached;
    for (std::int32_t left = 0; left < graph_.lefts(); ++left) {
      if (ofLeft_[left] != none) continue;
      layer_[left] = 0;
      reached.push_back(left);
    }
    bool found = false;
    for (std::size_t i = 0; i < reached.size(); ++i) {
      const std::int32_t left = reached[i];
      for (auto k = graph_.starts[left]; k < graph_.starts[left + 1]; ++k) {
        const std::int32_t further = ofRight_[graph_.partners[k]];
        found |= further == none;
        if (further == none || layer_[further] != none) continue;
        layer_[further] = layer_[left] + 1;
        reached.push_back(further);
      }
    }
    return found;
  }

  /// Looks for a path through the layers from an unmatched vertex to another, and swaps the edges along it.
  void augment(std::int32_t start) {
    path_.assign(1, start);
    while (!path_.empty()) {
      const std::int32_t left = path_.back();
      if (next_[left] == graph_.starts[left + 1]) {
        path_.pop_back();
        if (!path_.empty()) ++next_[path_.back()];
        continue;
      }
      const std::int32_t further = ofRight_[graph_.partners[next_[left]]];
      if (further == none) break;
      if (layer_[further] == layer_[left] + 1)
        path_.push_back(further);
      else
        ++next_[left];
    }
    for (; !path_.empty(); path_.pop_back()) join(path_.back(), graph_.partners[next_[path_.back()]++]);
  }

  const BoundaryGraph& graph_;
  std::vector<std::int32_t> ofLeft_;
  std::vector<std::int32_t> ofRight_;
  std::vector<std::int32_t> layer_;
  std::vector<std::int32_t> next_;  // edge of each vertex on the left that is tried next
  std::vector<std::int32_t> path_;
};

}  // namespace

VertexCover coverEdges(const BoundaryGraph& graph) {
  return Matching(graph).cover();
}

}  // namespace gavrel
