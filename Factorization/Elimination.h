#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "Factorization/Fronts.h"

namespace gavrel {

/// The least part of a diagonal entry that the elimination of others left, and the column it stands in.
struct LeastPart {
  double part = 1;
  std::int32_t column = -1;
};

/// A pivot that ends a factorization.
struct BadPivot {
  std::int32_t column;  ///< in the order of elimination
  double value;
};

/// Eliminates one front: adds the matrix's entries and the children's updates, factorizes the panel and leaves the
/// update for the parent. The work is cut into tiles of the lower triangle. Every tile's sums have a fixed order, so
/// that the result has the same bits however many threads take part.
class Elimination {
 public:
  /// The update of a child: its rows, where they go, and its values.
  struct Child {
    Trapezoid shape;
    std::span<const RowRun> runs;
    const double* values;
  };

  Elimination(const Fronts& plan, std::int32_t front, std::span<const double> values, double* panel, double* update,
              std::vector<Child> children);

  /// Does tiles until none is left; several threads may do so at once. Returns early when `stop` is set.
  void work(const std::atomic<bool>& stop);

  /// Tiles in all; with one, no other thread can help.
  [[nodiscard]] std::int32_t tiles() const { return static_cast<std::int32_t>(tileOf_.size()); }

  /// The first pivot of the front that is not positive or not finite, after `work`.
  [[nodiscard]] const std::optional<BadPivot>& badPivot() const { return bad_; }

  [[nodiscard]] LeastPart leastPart() const;

 private:
  struct Tile {
    std::int32_t row;
    std::int32_t column;
  };

  [[nodiscard]] std::int32_t height(std::int32_t i) const { return cuts_[i + 1] - cuts_[i]; }
  [[nodiscard]] double* tile(std::int32_t i, std::int32_t j) const;
  [[nodiscard]] std::int32_t leading(std::int32_t j) const;
  [[nodiscard]] std::int32_t numberOf(std::int32_t i, std::int32_t j) const;

  bool await(std::int32_t i, std::int32_t j, const std::atomic<bool>& stop) const;
  bool eliminatePanelTile(std::int32_t i, std::int32_t j, const std::atomic<bool>& stop);
  bool computeUpdateTile(std::int32_t i, std::int32_t j, const std::atomic<bool>& stop);
  void addEntries(std::int32_t i, std::int32_t j);
  void addChildren(std::int32_t i, std::int32_t j);
  bool factorizeDiagonal(std::int32_t j);

  const Fronts& plan_;
  const Front& front_;
  std::span<const double> values_;
  Trapezoid panel_;
  Trapezoid update_;
  double* panelValues_;
  double* updateValues_;
  std::vector<Child> children_;
  std::vector<std::int32_t> cuts_;  // rows at which tiles begin, and their end
  std::int32_t panelBlocks_;
  std::vector<Tile> tileOf_;
  std::vector<std::atomic<bool>> done_;
  std::atomic<std::int32_t> next_ = 0;
  std::atomic<bool> failed_ = false;
  std::optional<BadPivot> bad_;
};

}  // namespace gavrel
