#include <algorithm>
#include <limits>
#include <string>

#include "DataModel/BeamElement.h"
#include "DataModel/CSR.h"
#include "DataModel/TrussElement.h"
#include "Platform/Fatal.h"

namespace gavrel {

namespace {

/// Ends the process unless all unknowns of the node have a row and a 32-bit number.
void checkNode(std::int64_t node, std::int64_t nI) {
  const std::int64_t last =
      checkedProduct(dofsPerNode, node, dofsPerNode - 1, "a node number is too large to number its degrees of freedom");
  if (node < 0 || last >= nI) fatalIndex("the rows of the matrix", last, nI);
  if (last > std::numeric_limits<std::int32_t>::max())
    fatal("degree of freedom " + std::to_string(last) + " does not fit into 32 bits");
}

template <class Visit>
void forEachPair(const std::vector<TrussElement>& trusses, const std::vector<BeamElement>& beams, Visit&& visit) {
  for (const TrussElement& truss : trusses) visit(truss.startNodeId, truss.endNodeId);
  for (const BeamElement& beam : beams) visit(beam.startNodeId, beam.endNodeId);
}

/// For each node that an element touches, itself and its neighbours of higher number; ascending, without repetition.
std::vector<std::vector<std::int32_t>> findUpperNeighbours(const std::vector<TrussElement>& trusses,
                                                           const std::vector<BeamElement>& beams, std::int64_t nodes) {
  std::vector<std::vector<std::int32_t>> neighbours(static_cast<std::size_t>(nodes));
  forEachPair(trusses, beams, [&](std::int64_t start, std::int64_t end) {
    const auto [low, high] = std::minmax(start, end);
    auto& ofLow = neighbours[static_cast<std::size_t>(low)];
    ofLow.push_back(static_cast<std::int32_t>(low));
    ofLow.push_back(static_cast<std::int32_t>(high));
    neighbours[static_cast<std::size_t>(high)].push_back(static_cast<std::int32_t>(high));
  });
  for (auto& list : neighbours) {
    std::ranges::sort(list);
    list = CSR::DistinctAtOrdered(list);
  }
  return neighbours;
}

}  // namespace

std::vector<std::vector<std::int32_t>> CSR::CreateSparsityPattern(const std::vector<TrussElement>& trusses,
                                                                  const std::vector<BeamElement>& beams,
                                                                  std::int64_t nI) {
  if (nI < 0) fatal("a matrix cannot have " + std::to_string(nI) + " rows");
  forEachPair(trusses, beams, [nI](std::int64_t start, std::int64_t end) {
    checkNode(start, nI);
    checkNode(end, nI);
  });

  // Node by node instead of entry by entry: the six rows of a node differ only in their first column.
  std::vector<std::vector<std::int32_t>> J_Ii(static_cast<std::size_t>(nI));
  const auto neighbours = findUpperNeighbours(trusses, beams, nI / dofsPerNode);
  for (std::size_t node = 0; node < neighbours.size(); ++node) {
    const auto& list = neighbours[node];
    if (list.empty()) continue;
    for (std::size_t k = 0; k < dofsPerNode; ++k) {
      auto& columns = J_Ii[dofsPerNode * node + k];
      columns.reserve(dofsPerNode * list.size() - k);
      for (const std::int32_t neighbour : list) {
        const std::size_t firstOwn = neighbour == static_cast<std::int32_t>(node) ? k : 0;
        for (std::size_t c = firstOwn; c < dofsPerNode; ++c)
          columns.push_back(static_cast<std::int32_t>(dofsPerNode) * neighbour + static_cast<std::int32_t>(c));
      }
    }
  }
  return J_Ii;
}

std::vector<std::int32_t> CSR::DistinctAtOrdered(const std::vector<std::int32_t>& array) {
  std::vector<std::int32_t> distinct;
  std::int32_t last = -1;
  for (const std::int32_t number : array) {
    if (number > last) distinct.push_back(last = number);
  }
  return distinct;
}

}  // namespace gavrel
