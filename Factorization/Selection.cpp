#include "Factorization/Selection.h"

#include <algorithm>

namespace gavrel {

namespace {

/// Marks the stored entries that are not zero or were selected before.
std::vector<bool> markWantedEntries(const SymmetricMatrix& matrix, const Selection& previous) {
  std::vector<bool> wanted(matrix.values.size());
  for (std::size_t k = 0; k < wanted.size(); ++k) wanted[k] = matrix.values[k] != 0.0;
  for (const std::int64_t source : previous.sources) wanted[static_cast<std::size_t>(source)] = true;
  return wanted;
}

class Selector {
 public:
  Selector(const SymmetricMatrix& matrix, const Selection& previous)
      : matrix_(matrix),
        wanted_(markWantedEntries(matrix, previous)),
        number_(static_cast<std::size_t>(matrix.size), notCoupled),
        lastBlock_(static_cast<std::size_t>(matrix.size / matrix.blockSize + 1), -1) {}

  Selection run() {
    numberUnknowns();
    result_.starts.reserve(result_.unknowns.size() + 1);
    result_.starts.push_back(0);
    for (std::int64_t block = 0; block * matrix_.blockSize < matrix_.size; ++block) selectBlock(block);
    return std::move(result_);
  }

 private:
  static constexpr std::int64_t notCoupled = -1;
  static constexpr std::int64_t coupled = 0;

  template <class Visit>
  void forEachEntry(std::int64_t column, Visit&& visit) const {
    for (auto k = start(column); k < start(column + 1); ++k) visit(k, matrix_.indices[k]);
  }

  [[nodiscard]] std::size_t start(std::int64_t column) const {
    return static_cast<std::size_t>(matrix_.starts[static_cast<std::size_t>(column)]);
  }

  std::int64_t& number(std::int64_t unknown) { return number_[static_cast<std::size_t>(unknown)]; }

  void numberUnknowns() {
    for (std::int64_t column = 0; column < matrix_.size; ++column) {
      forEachEntry(column, [&](std::size_t k, std::int64_t row) {
        if (row != column && wanted_[k]) number(row) = number(column) = coupled;
      });
    }
    for (std::int64_t unknown = 0; unknown < matrix_.size; ++unknown) {
      auto& list = number(unknown) == coupled ? result_.unknowns : result_.uncoupled;
      if (number(unknown) == coupled) number(unknown) = static_cast<std::int64_t>(list.size());
      list.push_back(unknown);
    }
  }

  void selectBlock(std::int64_t block) {
    const std::int64_t first = block * matrix_.blockSize;
    const std::int64_t last = std::min(first + matrix_.blockSize, matrix_.size);
    lastBlock_[static_cast<std::size_t>(block)] = block;
    for (std::int64_t column = first; column < last; ++column) {
      forEachEntry(column, [&](std::size_t k, std::int64_t row) {
        if (wanted_[k]) lastBlock_[static_cast<std::size_t>(row / matrix_.blockSize)] = block;
      });
    }
    for (std::int64_t column = first; column < last; ++column) {
      if (number(column) == notCoupled) continue;
      forEachEntry(column, [&](std::size_t k, std::int64_t row) {
        if (number(row) == notCoupled || lastBlock_[static_cast<std::size_t>(row / matrix_.blockSize)] != block) return;
        result_.rows.push_back(number(row));
        result_.sources.push_back(static_cast<std::int64_t>(k));
      });
      result_.starts.push_back(static_cast<std::int64_t>(result_.rows.size()));
    }
  }

  const SymmetricMatrix& matrix_;
  std::vector<bool> wanted_;
  std::vector<std::int64_t> number_;     // of each unknown in the selection
  std::vector<std::int64_t> lastBlock_;  // for each block of rows, the last block of columns with a wanted entry in it
  Selection result_;
};

}  // namespace

Selection Selection::select(const SymmetricMatrix& matrix, const Selection& previous) {
  return Selector(matrix, previous).run();
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
