#include "Factorization/SparseCholesky.h"

#include <tbb/info.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#include "Factorization/Cancellation.h"
#include "Factorization/ChooseOrder.h"
#include "Factorization/Fronts.h"
#include "Factorization/Multifrontal.h"
#include "Factorization/NodeGraph.h"
#include "Factorization/Selection.h"
#include "Platform/KernelResources.h"

namespace gavrel {

namespace {

using Kind = CholeskyFault::Kind;

/// A pivot of this part of its diagonal has lost all digits but the rounding errors of the elimination.
constexpr double lostPivot = 1e-14;

constexpr CholeskyFault outOfMemory{Kind::OutOfMemory, 0, 0};
constexpr CholeskyFault cancelled{Kind::Cancelled, 0, 0};

std::optional<CholeskyFault> structureFault(const SymmetricMatrix& matrix) {
  const auto entries = static_cast<std::int64_t>(matrix.indices.size());
  if (matrix.size < 0 || matrix.blockSize < 1 || std::ssize(matrix.starts) != matrix.size + 1 ||
      matrix.values.size() != matrix.indices.size() || matrix.starts.front() != 0 || matrix.starts.back() != entries)
    return CholeskyFault{Kind::Malformed, 0, 0};
  for (std::int64_t column = 0; column < matrix.size; ++column) {
    const auto start = matrix.starts[static_cast<std::size_t>(column)];
    const auto end = matrix.starts[static_cast<std::size_t>(column + 1)];
    if (start > end || end > entries) return CholeskyFault{Kind::Malformed, column, 0};
    if (start == end) return CholeskyFault{Kind::EmptyColumn, column, 0};
    const auto rows = matrix.indices.subspan(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
    if (rows.front() != column || rows.back() >= matrix.size ||
        std::ranges::adjacent_find(rows, std::ranges::greater_equal()) != rows.end())
      return CholeskyFault{Kind::Malformed, column, 0};
  }
  return std::nullopt;
}

std::optional<CholeskyFault> valueFault(const SymmetricMatrix& matrix) {
  const auto isFinite = [](double value) { return std::abs(value) <= std::numeric_limits<double>::max(); };
  if (std::ranges::count_if(matrix.values, isFinite) != std::ssize(matrix.values)) {
    const auto place = std::ranges::find_if_not(matrix.values, isFinite) - matrix.values.begin();
    const auto column = std::ranges::upper_bound(matrix.starts, place) - matrix.starts.begin() - 1;
    return CholeskyFault{Kind::NotFinite, column, matrix.values[static_cast<std::size_t>(place)]};
  }
  for (std::int64_t column = 0; column < matrix.size; ++column) {
    const auto start = matrix.starts[static_cast<std::size_t>(column)];
    const double diagonal = matrix.values[static_cast<std::size_t>(start)];
    if (diagonal <= 0) return CholeskyFault{Kind::DiagonalNotPositive, column, diagonal};
  }
  return std::nullopt;
}

}  // namespace

struct SparseCholesky::State {
  int threads;
  std::atomic<bool> isCancelled = false;

  std::int64_t size = 0;
  Selection selection;
  std::vector<double> uncoupled;  // diagonals of the unknowns that are solved by division
  bool isAnalysed = false;
  std::optional<Fronts> plan;  // none if all unknowns are uncoupled
  std::optional<Multifrontal> factor;

  std::optional<std::int64_t> weakest;
  double smallestPivotRatio = 1;
  int usedThreads = 1;  // by the last factorization

  explicit State(int threads_) : threads(threads_ > 0 ? threads_ : tbb::info::default_concurrency()) {}

  void forget() {
    factor.reset();
    plan.reset();
    isAnalysed = false;
  }

  /// The unknown that is eliminated in a column.
  [[nodiscard]] std::int64_t unknownAt(std::int32_t column) const { return selection.unknowns[plan->unknowns[column]]; }

  std::optional<CholeskyFault> analyse(const SymmetricMatrix& matrix) {
    if (!isAnalysed) {
      if (const auto fault = structureFault(matrix)) return fault;
    }
    if (const auto fault = valueFault(matrix)) return fault;
    if (!isAnalysed || !selection.covers(matrix)) {
      forget();
      giveUpIf(isCancelled);
      size = matrix.size;
      selection = Selection::select(matrix, selection, isCancelled);
      if (!selection.unknowns.empty()) {
        giveUpIf(isCancelled);
        const NodeGraph graph = NodeGraph::build(selection, matrix.blockSize);
        const EliminationTree tree = chooseOrder(graph, matrix.coordinates, isCancelled);
        plan = Fronts::plan(selection, graph, tree, isCancelled);
      }
      isAnalysed = true;
    }
    uncoupled.clear();
    for (const std::int64_t unknown : selection.uncoupled) uncoupled.push_back(matrix.values[matrix.starts[unknown]]);
    return std::nullopt;
  }

  std::optional<CholeskyFault> factorize(const SymmetricMatrix& matrix) {
    if (const auto fault = analyse(matrix)) return fault;
    if (isCancelled.exchange(false)) return cancelled;
    if (!plan) return std::nullopt;
    if (!factor) factor.emplace(*plan);
    factor->reserve();
    // Threads that find no room for their stacks end the process, kernels without a buffer wait for ever.
    int usable = reserveKernelBuffers(factor->usefulThreads(threads));
    if (usable == 0) return outOfMemory;
    if (usable > 1 && !factor->hasRoomForThreads(usable)) usable = 1;
    usedThreads = usable;
    const auto bad = factor->factorize(matrix.values, usable, isCancelled);
    if (isCancelled.exchange(false)) return cancelled;
    if (bad) {
      const bool isFinite = std::isfinite(bad->value);
      return CholeskyFault{isFinite ? Kind::PivotNotPositive : Kind::PivotNotFinite, unknownAt(bad->column),
                           bad->value};
    }
    const LeastPart least = factor->leastPart();
    smallestPivotRatio = least.part;
    if (least.part < lostPivot) weakest = unknownAt(least.column);
    return std::nullopt;
  }

  void solve(std::span<const double> b, std::span<double> x, std::int32_t count) const {
    for (std::size_t i = 0; i < uncoupled.size(); ++i) {
      for (std::int64_t k = 0; k < count; ++k) {
        const std::int64_t place = k * size + selection.uncoupled[i];
        x[place] = b[place] / uncoupled[i];
      }
    }
    if (!plan) return;
    const auto columns = std::ssize(plan->unknowns);
    std::vector<double> ordered(columns * count);
    for (std::int64_t k = 0; k < count; ++k)
      for (std::int32_t c = 0; c < columns; ++c) ordered[k * columns + c] = b[k * size + unknownAt(c)];
    factor->solve(ordered, count, usedThreads);
    for (std::int64_t k = 0; k < count; ++k)
      for (std::int32_t c = 0; c < columns; ++c) x[k * size + unknownAt(c)] = ordered[k * columns + c];
  }
};

SparseCholesky::SparseCholesky(int threads) : state_(std::make_unique<State>(threads)) {}
SparseCholesky::SparseCholesky(SparseCholesky&&) noexcept = default;
SparseCholesky& SparseCholesky::operator=(SparseCholesky&&) noexcept = default;
SparseCholesky::~SparseCholesky() = default;

std::optional<CholeskyFault> SparseCholesky::analyse(const SymmetricMatrix& matrix) {
  try {
    return state_->analyse(matrix);
  } catch (const std::bad_alloc&) {
    state_->forget();
    return outOfMemory;
  } catch (const Cancellation&) {
    state_->forget();
    state_->isCancelled = false;
    return cancelled;
  }
}

std::optional<CholeskyFault> SparseCholesky::factorize(const SymmetricMatrix& matrix) {
  State& s = *state_;
  s.weakest.reset();
  s.smallestPivotRatio = 1;
  try {
    const auto fault = s.factorize(matrix);
    if (fault) s.factor.reset();
    return fault;
  } catch (const std::bad_alloc&) {
    s.forget();
    return outOfMemory;
  } catch (const Cancellation&) {
    s.forget();
    s.isCancelled = false;
    return cancelled;
  }
}

std::optional<CholeskyFault> SparseCholesky::solve(std::span<const double> b, std::span<double> x, std::int32_t count) {
  try {
    state_->solve(b, x, count);
    return std::nullopt;
  } catch (const std::bad_alloc&) {
    return outOfMemory;
  }
}

void SparseCholesky::cancel() {
  state_->isCancelled = true;
}

std::optional<std::int64_t> SparseCholesky::weakestUnknown() const {
  return state_->weakest;
}

double SparseCholesky::smallestPivotRatio() const {
  return state_->smallestPivotRatio;
}

double SparseCholesky::operations() const {
  return state_->plan ? state_->plan->operations : 0;
}

int SparseCholesky::threads() const {
  return state_->threads;
}

void SparseCholesky::dropFactor() {
  state_->factor.reset();
}

}  // namespace gavrel
