#include "DataModel/Connectivity.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace gavrel {

namespace {

using Positions = std::vector<std::int64_t>;

/// Sets of nodes that are joined, by union and find with halved paths (Tarjan, Data Structures and Network Algorithms,
/// ch. 2).
class Parts {
 public:
  explicit Parts(std::int64_t nodes) : above_(static_cast<std::size_t>(nodes)) {
    std::iota(above_.begin(), above_.end(), std::int64_t{0});
  }
  std::int64_t findLowest(std::int64_t node) {
    while (above(node) != node) {
      above(node) = above(above(node));
      node = above(node);
    }
    return node;
  }
  void join(std::int64_t a, std::int64_t b) {
    const auto [low, high] = std::minmax({findLowest(a), findLowest(b)});
    above(high) = low;
  }

 private:
  std::int64_t& above(std::int64_t node) { return above_[static_cast<std::size_t>(node)]; }

  Positions above_;
};

template <class Element>
void inspect(const std::vector<Element>& elements, std::vector<bool>& used, Parts& parts, Positions& zero,
             Positions& unknown, Positions& repeated) {
  const auto exists = [&used](std::int64_t node) { return node >= 0 && node < std::ssize(used); };
  std::vector<std::tuple<std::int64_t, std::int64_t, std::int64_t>> joined;
  joined.reserve(elements.size());
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const Element& element = elements[i];
    const auto position = static_cast<std::int64_t>(i);
    const auto [low, high] = std::minmax(element.startNodeId, element.endNodeId);
    joined.emplace_back(low, high, position);
    if (length({element.dXx, element.dXy, element.dXz}) <= zeroLength) zero.push_back(position);
    for (const std::int64_t node : {low, high})
      if (exists(node)) used[static_cast<std::size_t>(node)] = true;
    if (exists(low) && exists(high))
      parts.join(low, high);
    else
      unknown.push_back(position);
  }
  std::ranges::sort(joined);
  for (std::size_t i = 1; i < joined.size(); ++i) {
    const auto& [low, high, position] = joined[i];
    const auto& [lowBefore, highBefore, before] = joined[i - 1];
    if (low == lowBefore && high == highBefore) repeated.push_back(position);
  }
  std::ranges::sort(repeated);
}

}  // namespace

Connectivity Connectivity::examine(const Project& project) {
  Connectivity found;
  const std::int64_t nodes = project.nodeCount();
  std::vector<bool> used(static_cast<std::size_t>(nodes));
  Parts parts(nodes);
  inspect(*project.trussElements, used, parts, found.zeroLengthTrusses, found.trussesWithUnknownNodes,
          found.repeatedTrusses);
  inspect(*project.beamElements, used, parts, found.zeroLengthBeams, found.beamsWithUnknownNodes, found.repeatedBeams);
  for (std::int64_t node = 0; node < nodes; ++node) {
    found.partOf.push_back(parts.findLowest(node));
    if (!used[static_cast<std::size_t>(node)]) found.nodesWithoutElements.push_back(node);
  }
  return found;
}

}  // namespace gavrel
