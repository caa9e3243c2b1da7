#include "Factorization/Selection.h"

#include <algorithm>

#include "Factorization/Cancellation.h"

namespace gavrel {

namespace {

class Selector {
 public:
  Selector(const SymmetricMatrix& matrix, const Selection& previous, const std::atomic<bool>& stop)
      : matrix_(matrix),
        stop_(stop),
        wasSelected_(previous.sources.empty() ? 0 : matrix.values.size()),
        number_(static_cast<std::size_t>(matrix.size), notCoupled),
        blocks_(matrix.size / matrix.blockSize + 1),
        lastBlock_(static_cast<std::size_t>(blocks_), -1) {
    for (const std::int64_t source : previous.sources) wasSelected_[static_cast<std::size_t>(source)] = true;
  }

  Selection run() {
    wantedStarts_.push_back(0);
    for (std::int32_t block = 0; block < blocks_; ++block) findWanted(block);
    numberUnknowns();
    countEntries();
    result_.rows.resize(static_cast<std::size_t>(result_.starts.back()));
    result_.sources.resize(result_.rows.size());
    std::size_t next = 0;
    forEachSelected([&](std::size_t k, std::int64_t row) {
      result_.rows[next] = number(row);
      result_.sources[next++] = static_cast<std::int64_t>(k);
    });
    return std::move(result_);
  }

 private:
  static constexpr std::int32_t notCoupled = -1;
  static constexpr std::int32_t coupled = 0;

  [[nodiscard]] std::size_t start(std::int64_t column) const {
    return static_cast<std::size_t>(matrix_.starts[static_cast<std::size_t>(column)]);
  }
  [[nodiscard]] std::int64_t firstUnknown(std::int64_t block) const {
    return std::min(block * matrix_.blockSize, matrix_.size);
  }
  std::int32_t& number(std::int64_t unknown) { return number_[static_cast<std::size_t>(unknown)]; }

  /// Calls with each entry of a column and the block of its row. Rows ascend, so that few need a division.
  template <class Visit>
  void forEachEntry(std::int64_t column, Visit&& visit) const {
    std::int64_t block = 0;
    std::int64_t end = 0;
    for (auto k = start(column); k < start(column + 1); ++k) {
      const std::int64_t row = matrix_.indices[k];
      if (row >= end) {
        block = row / matrix_.blockSize;
        end = (block + 1) * matrix_.blockSize;
      }
      visit(k, row, static_cast<std::size_t>(block));
    }
  }

  /// Finds the blocks of rows that share an entry that is not zero, or was selected before, with a block of columns.
  void findWanted(std::int32_t block) {
    giveUpIf(stop_);
    const auto add = [&](std::size_t other) {
      if (lastBlock_[other] == block) return;
      lastBlock_[other] = block;
      wanted_.push_back(static_cast<std::int32_t>(other));
    };
    add(static_cast<std::size_t>(block));
    for (auto column = firstUnknown(block); column < firstUnknown(block + 1); ++column) {
      forEachEntry(column, [&](std::size_t k, std::int64_t row, std::size_t other) {
        if (matrix_.values[k] == 0.0 && (wasSelected_.empty() || !wasSelected_[k])) return;
        if (row != column) number(row) = number(column) = coupled;
        add(other);
      });
    }
    wantedStarts_.push_back(wanted_.size());
  }

  void numberUnknowns() {
    for (std::int64_t unknown = 0; unknown < matrix_.size; ++unknown) {
      auto& list = number(unknown) == coupled ? result_.unknowns : result_.uncoupled;
      if (number(unknown) == coupled) number(unknown) = static_cast<std::int32_t>(list.size());
      list.push_back(unknown);
    }
  }

  /// Calls with every entry between coupled unknowns of blocks that want each other, and at the end of each column.
  template <class Visit, class End>
  void forEachSelected(Visit&& visit, End&& end) {
    std::ranges::fill(lastBlock_, -1);
    for (std::int32_t block = 0; block < blocks_; ++block) {
      giveUpIf(stop_);
      const auto i = static_cast<std::size_t>(block);
      for (auto w = wantedStarts_[i]; w < wantedStarts_[i + 1]; ++w)
        lastBlock_[static_cast<std::size_t>(wanted_[w])] = block;
      for (auto column = firstUnknown(block); column < firstUnknown(block + 1); ++column) {
        if (number(column) == notCoupled) continue;
        forEachEntry(column, [&](std::size_t k, std::int64_t row, std::size_t other) {
          if (lastBlock_[other] == block && number(row) != notCoupled) visit(k, row);
        });
        end();
      }
    }
  }
  template <class Visit>
  void forEachSelected(Visit&& visit) {
    forEachSelected(visit, [] {});
  }

  void countEntries() {
    std::int64_t count = 0;
    result_.starts.reserve(result_.unknowns.size() + 1);
    result_.starts.push_back(0);
    forEachSelected([&](std::size_t, std::int64_t) { ++count; }, [&] { result_.starts.push_back(count); });
  }

  const SymmetricMatrix& matrix_;
  const std::atomic<bool>& stop_;
  std::vector<bool> wasSelected_;     // empty if nothing was
  std::vector<std::int32_t> number_;  // of each unknown in the selection
  std::int64_t blocks_;
  std::vector<std::int32_t> lastBlock_;  // for each block of rows, the last block of columns that wanted it
  std::vector<std::int32_t> wanted_;     // by block b of columns: wantedStarts_[b] <= w < wantedStarts_[b + 1]
  std::vector<std::size_t> wantedStarts_;
  Selection result_;
};

}  // namespace

Selection Selection::select(const SymmetricMatrix& matrix, const Selection& previous, const std::atomic<bool>& stop) {
  return Selector(matrix, previous, stop).run();
}

bool Selection::covers(const SymmetricMatrix& matrix) const {
  std::int64_t inside = 0;
  for (const std::int64_t source : sources) inside += matrix.values[static_cast<std::size_t>(source)] != 0.0 ? 1 : 0;
  for (const std::int64_t unknown : uncoupled) {
    const auto diagonal = matrix.starts[static_cast<std::size_t>(unknown)];
    inside += matrix.values[static_cast<std::size_t>(diagonal)] != 0.0 ? 1 : 0;
  }
  return inside == std::ranges::count_if(matrix.values, [](double value) { return value != 0.0; });
}

}  // namespace gavrel
