#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <vector>

#include "Factorization/EliminationTree.h"
#include "Factorization/NodeGraph.h"

namespace gavrel {

/// The leading `columns` columns of a lower triangle with `rows` rows, stored as blocks of columns: each holds, column
/// by column, the rows from its first diagonal entry down. What stands above the diagonal within a block means nothing.
struct Trapezoid {
  /// Columns of a block, and rows of a tile: so many that BLAS reaches its full speed and a tile stays in the cache.
  static constexpr std::int32_t width = 256;

  std::int32_t rows = 0;
  std::int32_t columns = 0;

  [[nodiscard]] std::int32_t blocks() const { return (columns + width - 1) / width; }
  /// Length of a column of the block.
  [[nodiscard]] std::int32_t height(std::int32_t block) const { return rows - block * width; }
  /// Where the block begins.
  [[nodiscard]] std::int64_t start(std::int32_t block) const {
    return std::int64_t{block} * width * rows - std::int64_t{block} * (block - 1) / 2 * width * width;
  }
  [[nodiscard]] std::int64_t size() const {
    const std::int32_t last = blocks() - 1;
    return last < 0 ? 0 : start(last) + std::int64_t{columns - last * width} * height(last);
  }
  /// Offset by which a row number leads into a column: entry (row, column) stands at `column(c) + row`.
  [[nodiscard]] std::int64_t column(std::int32_t c) const {
    const std::int32_t block = c / width;
    return start(block) + std::int64_t{c - block * width} * height(block) - std::int64_t{block} * width;
  }
};

/// Columns that are eliminated together, with the unknowns below them that they change: one front.
struct Front {
  std::int32_t firstColumn;  ///< in the order of elimination of unknowns
  std::int32_t width;        ///< eliminated unknowns
  std::int32_t rows;         ///< unknowns below them
  std::int32_t parent;       ///< the front that takes the update; -1: none
  std::int32_t firstVertex;  ///< in the order of elimination of vertices
  std::int32_t vertices;

  [[nodiscard]] Trapezoid panel() const { return {width + rows, width}; }
  [[nodiscard]] Trapezoid update() const { return {rows, rows}; }
  /// Multiplications and additions of its elimination.
  [[nodiscard]] double operations() const;
};

/// Rows `from` to `from + length` of a front's update are the rows `to`... of its parent's front.
struct RowRun {
  std::int32_t from;
  std::int32_t to;
  std::int32_t length;
};

/// What a factorization does, found from the structure of the matrix alone (multifrontal method: Duff, Reid 1983; Liu
/// 1992): which fronts there are, in which order, and where every number goes.
struct Fronts {
  std::vector<Front> fronts;           ///< children before parents, each subtree in one piece
  std::vector<std::int32_t> children;  ///< of front f: childStarts[f] <= k < childStarts[f + 1], ascending
  std::vector<std::int32_t> childStarts;
  std::vector<RowRun> runs;  ///< of front f: runStarts[f] <= k < runStarts[f + 1], ascending
  std::vector<std::int32_t> runStarts;
  std::vector<std::int64_t> panelStarts;  ///< where the panel of each front stands in the factor, and the factor's size

  std::vector<std::int32_t> unknowns;  ///< the selection's number of what is eliminated in each column

  std::vector<std::int64_t>
      entryStarts;                      ///< entries of the matrix in column c: entryStarts[c] <= k < entryStarts[c + 1]
  std::vector<std::int32_t> entryRows;  ///< row in the front of each entry, ascending; the diagonal first
  std::vector<std::int64_t> entrySources;  ///< where the entry stands among the matrix's values

  double operations = 0;

  /// The fronts for an order of elimination. Throws Cancellation when `stop` is set.
  [[nodiscard]] static Fronts plan(const Selection& selection, const NodeGraph& graph, const EliminationTree& tree,
                                   const std::atomic<bool>& stop);

  [[nodiscard]] std::int32_t size() const { return static_cast<std::int32_t>(fronts.size()); }
  [[nodiscard]] std::span<const std::int32_t> childrenOf(std::int32_t front) const {
    return std::span(children).subspan(childStarts[front], childStarts[front + 1] - childStarts[front]);
  }
  [[nodiscard]] std::span<const RowRun> runsOf(std::int32_t front) const {
    return std::span(runs).subspan(runStarts[front], runStarts[front + 1] - runStarts[front]);
  }
};

}  // namespace gavrel
