#pragma once

#include <tbb/enumerable_thread_specific.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "Factorization/Elimination.h"
#include "Factorization/Fronts.h"
#include "Factorization/Memory.h"
#include "Factorization/TreeTasks.h"

namespace gavrel {

/// The numbers of a factor, computed front by front. Their memory is kept from one matrix to the next.
class Multifrontal {
 public:
  /// The plan outlives the object.
  explicit Multifrontal(const Fronts& plan);

  /// Takes the memory for the factor. Throws std::bad_alloc.
  void reserve();

  /// Whether there is room for all that so many threads need beside.
  [[nodiscard]] bool hasRoomForThreads(int threads) const;

  /// How many threads of so many a factorization keeps busy.
  [[nodiscard]] int usefulThreads(int threads) const { return tasks_.isWorthThreads() ? threads : 1; }

  /// Computes the factor from the values of the matrix. Returns the first pivot, in the order of elimination, that is
  /// not positive or not finite. Ends early, without a factor, when `stop` is set. Throws std::bad_alloc.
  [[nodiscard]] std::optional<BadPivot> factorize(std::span<const double> values, int threads,
                                                  const std::atomic<bool>& stop);

  /// Of the last factorization.
  [[nodiscard]] LeastPart leastPart() const { return least_; }

  /// Solves with the factor: `x` has a column of unknowns, in the order of elimination, for each of `count` right-hand
  /// sides, which it holds before. Throws std::bad_alloc.
  void solve(std::span<double> x, std::int32_t count, int threads) const;

 private:
  using Stacks = std::array<NumberStack, 2>;

  void visit(const TreeTasks::Task& task);
  void eliminate(std::int32_t f, double* update, bool isShared);
  void solveForward(std::int32_t f, std::span<double> x, std::span<double> rows, std::int32_t count) const;
  void solveBackward(std::int32_t f, std::span<double> x, std::span<double> rows, std::int32_t count) const;
  [[nodiscard]] double* panel(std::int32_t f) const { return factor_.data() + plan_.panelStarts[f]; }

  const Fronts& plan_;
  TreeTasks tasks_;
  std::vector<std::uint8_t> depth_;           // whether a front is an odd number of steps below its root
  std::array<std::int64_t, 2> stackSizes_{};  // that the largest task needs
  std::vector<std::int64_t> rowStarts_;       // of each front among the rows of all
  NumberArray factor_;
  NumberPool pool_;                                 // updates that another task takes over
  tbb::enumerable_thread_specific<Stacks> stacks_;  // updates within a task: of odd and even depth in turn
  std::vector<double*> updates_;
  std::vector<LeastPart> leastParts_;
  std::vector<std::optional<BadPivot>> badPivots_;
  LeastPart least_;

  std::span<const double> values_;
  const std::atomic<bool>* stop_ = nullptr;
  int threads_ = 1;
  std::atomic<std::int32_t> firstBad_;  // front
};

}  // namespace gavrel
