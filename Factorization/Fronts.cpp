#include "Factorization/Fronts.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "Factorization/Amalgamation.h"
#include "Factorization/Cancellation.h"

namespace gavrel {

namespace {

using Numbers = std::vector<std::int32_t>;
constexpr std::int32_t none = -1;

/// Takes the groups over as fronts, and numbers vertices and unknowns anew by their elimination.
struct Numbering {
  Numbers place;        // of each vertex
  Numbers order;        // of vertices
  Numbers firstColumn;  // of what stands at each place, and the number of columns
  Numbers columnPlaces;
};

Numbering numberFronts(const NodeGraph& graph, const std::vector<Group>& groups, Fronts& plan) {
  Numbering numbering;
  numbering.place.resize(graph.blocks.size());
  numbering.firstColumn.push_back(0);
  for (const Group& group : groups) {
    plan.fronts.push_back({numbering.firstColumn.back(), static_cast<std::int32_t>(group.columns),
                           static_cast<std::int32_t>(group.rows), group.parent,
                           static_cast<std::int32_t>(numbering.order.size()),
                           static_cast<std::int32_t>(group.vertices.size())});
    for (const std::int32_t vertex : group.vertices) {
      numbering.place[vertex] = static_cast<std::int32_t>(numbering.order.size());
      numbering.columnPlaces.insert(numbering.columnPlaces.end(), graph.unknowns(vertex), numbering.place[vertex]);
      numbering.order.push_back(vertex);
      numbering.firstColumn.push_back(numbering.firstColumn.back() + graph.unknowns(vertex));
      for (auto unknown = graph.firstUnknown[vertex]; unknown < graph.firstUnknown[vertex + 1]; ++unknown)
        plan.unknowns.push_back(unknown);
    }
  }
  return numbering;
}

void listChildren(Fronts& plan) {
  plan.childStarts.assign(plan.fronts.size() + 1, 0);
  for (const Front& front : plan.fronts)
    if (front.parent != none) ++plan.childStarts[front.parent];
  std::exclusive_scan(plan.childStarts.begin(), plan.childStarts.end(), plan.childStarts.begin(), 0);
  plan.children.resize(plan.childStarts.back());
  Numbers next = plan.childStarts;
  for (std::int32_t f = 0; f < plan.size(); ++f)
    if (plan.fronts[f].parent != none) plan.children[next[plan.fronts[f].parent]++] = f;
}

/// Sorts the matrix's entries by the column in which they are eliminated. Their rows are columns' numbers yet.
void sortEntries(const Selection& selection, Fronts& plan) {
  const auto columns = static_cast<std::int32_t>(plan.unknowns.size());
  Numbers columnOf(plan.unknowns.size());
  for (std::int32_t c = 0; c < columns; ++c) columnOf[plan.unknowns[c]] = c;
  const auto forEachEntry = [&](auto&& visit) {
    for (std::int32_t c = 0; c < columns; ++c) {
      for (auto k = selection.starts[c]; k < selection.starts[c + 1]; ++k) {
        const auto [low, high] = std::minmax(columnOf[c], columnOf[selection.rows[k]]);
        visit(low, high, selection.sources[k]);
      }
    }
  };
  auto& starts = plan.entryStarts;
  starts.assign(plan.unknowns.size() + 1, 0);
  forEachEntry([&](std::int32_t column, std::int32_t, std::int64_t) { ++starts[column]; });
  std::exclusive_scan(starts.begin(), starts.end(), starts.begin(), std::int64_t{0});
  plan.entryRows.resize(starts.back());
  plan.entrySources.resize(starts.back());
  std::vector<std::int64_t> next = starts;
  forEachEntry([&](std::int32_t column, std::int32_t row, std::int64_t source) {
    const std::int64_t k = next[column]++;
    plan.entryRows[k] = row;
    plan.entrySources[k] = source;
  });
}

/// Finds the rows of every front and with them the places of entries and updates.
class RowFinder {
 public:
  RowFinder(const NodeGraph& graph, const Numbering& numbering, Fronts& plan)
      : graph_(graph),
        numbering_(numbering),
        plan_(plan),
        rows_(plan.fronts.size()),
        mark_(graph.blocks.size(), none),
        offset_(graph.blocks.size()) {}

  void run(const std::atomic<bool>& stop) {
    plan_.runStarts.assign(plan_.fronts.size() + 1, 0);
    std::vector<std::vector<RowRun>> runs(plan_.fronts.size());
    for (std::int32_t f = 0; f < plan_.size(); ++f) {
      giveUpIf(stop);
      findRows(f);
      const Front& front = plan_.fronts[f];
      std::int32_t offset = 0;
      const auto number = [&](std::int32_t place) {
        offset_[place] = offset;
        offset += numbering_.firstColumn[place + 1] - numbering_.firstColumn[place];
      };
      for (std::int32_t i = 0; i < front.vertices; ++i) number(front.firstVertex + i);
      for (const std::int32_t place : rows_[f]) number(place);
      plan_.fronts[f].rows = offset - front.width;
      placeEntries(front);
      for (const std::int32_t child : plan_.childrenOf(f)) {
        runs[child] = findRuns(rows_[child]);
        Numbers().swap(rows_[child]);
      }
    }
    for (std::size_t f = 0; f < runs.size(); ++f) {
      plan_.runs.insert(plan_.runs.end(), runs[f].begin(), runs[f].end());
      plan_.runStarts[f + 1] = static_cast<std::int32_t>(plan_.runs.size());
    }
  }

 private:
  void findRows(std::int32_t f) {
    const Front& front = plan_.fronts[f];
    const std::int32_t end = front.firstVertex + front.vertices;
    Numbers& rows = rows_[f];
    const auto add = [&](std::int32_t place) {
      if (place < end || mark_[place] == f) return;
      mark_[place] = f;
      rows.push_back(place);
    };
    for (std::int32_t place = front.firstVertex; place < end; ++place)
      for (const std::int32_t other : graph_.neighboursAt(numbering_.order[place])) add(numbering_.place[other]);
    for (const std::int32_t child : plan_.childrenOf(f))
      for (const std::int32_t place : rows_[child]) add(place);
    std::ranges::sort(rows);
  }

  void placeEntries(const Front& front) {
    std::vector<std::pair<std::int32_t, std::int64_t>> sorted;
    for (std::int32_t column = front.firstColumn; column < front.firstColumn + front.width; ++column) {
      sorted.clear();
      for (auto k = plan_.entryStarts[column]; k < plan_.entryStarts[column + 1]; ++k) {
        const std::int32_t place = numbering_.columnPlaces[plan_.entryRows[k]];
        sorted.emplace_back(offset_[place] + plan_.entryRows[k] - numbering_.firstColumn[place], plan_.entrySources[k]);
      }
      std::ranges::sort(sorted);
      auto k = plan_.entryStarts[column];
      for (const auto& [row, source] : sorted) {
        plan_.entryRows[k] = row;
        plan_.entrySources[k++] = source;
      }
    }
  }

  /// Where rows of a child stand in the front that `offset_` describes.
  [[nodiscard]] std::vector<RowRun> findRuns(const Numbers& rows) const {
    std::vector<RowRun> runs;
    std::int32_t from = 0;
    for (const std::int32_t place : rows) {
      const std::int32_t to = offset_[place];
      const std::int32_t length = numbering_.firstColumn[place + 1] - numbering_.firstColumn[place];
      if (!runs.empty() && runs.back().to + runs.back().length == to)
        runs.back().length += length;
      else
        runs.push_back({from, to, length});
      from += length;
    }
    return runs;
  }

  const NodeGraph& graph_;
  const Numbering& numbering_;
  Fronts& plan_;
  std::vector<Numbers> rows_;  // places below each front that no parent has taken over yet
  Numbers mark_;               // the last front that each place was added to
  Numbers offset_;             // of each place, its first row in the front at hand
};

}  // namespace

double Front::operations() const {
  const double w = width;
  const double r = rows;
  return w * w * w / 3 + w * w * r + w * r * r;
}

Fronts Fronts::plan(const Selection& selection, const NodeGraph& graph, const EliminationTree& tree,
                    const std::atomic<bool>& stop) {
  Fronts plan;
  const Numbering numbering = numberFronts(graph, groupVertices(graph, tree), plan);
  listChildren(plan);
  giveUpIf(stop);
  sortEntries(selection, plan);
  RowFinder(graph, numbering, plan).run(stop);
  plan.panelStarts.push_back(0);
  for (const Front& front : plan.fronts) {
    plan.panelStarts.push_back(plan.panelStarts.back() + front.panel().size());
    plan.operations += front.operations();
  }
  return plan;
}

}  // namespace gavrel
