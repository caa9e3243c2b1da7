#include <cblas.h>

#include <algorithm>
#include <vector>

#include "Factorization/Multifrontal.h"

namespace gavrel {

namespace {

/// A block of columns of a front's panel.
struct PanelBlock {
  std::int32_t first;   // column
  std::int32_t n;       // columns
  std::int32_t within;  // rows below its diagonal tile that belong to later columns of the front
  std::int32_t height;  // of its columns
  const double* L;
};

PanelBlock takeBlock(const Front& front, const double* panel, std::int32_t block) {
  const Trapezoid shape = front.panel();
  const std::int32_t first = block * Trapezoid::width;
  const std::int32_t n = std::min(Trapezoid::width, front.width - first);
  return {first, n, front.width - first - n, shape.height(block), panel + shape.start(block)};
}

}  // namespace

// Each front keeps the part of the right-hand sides that belongs to its rows: on the way up what it takes from its
// ancestors' unknowns, on the way down their solution. `rows` holds it front by front, each with its columns behind
// each other.

void Multifrontal::solve(std::span<double> x, std::int32_t count, int threads) const {
  std::vector<double> rows(static_cast<std::size_t>(rowStarts_.back() * count));
  tasks_.visitUpwards(threads, [&](const TreeTasks::Task& task) {
    for (std::int32_t f = task.firstFront; f <= task.lastFront; ++f) solveForward(f, x, rows, count);
  });
  tasks_.visitDownwards(threads, [&](const TreeTasks::Task& task) {
    for (std::int32_t f = task.lastFront; f >= task.firstFront; --f) solveBackward(f, x, rows, count);
  });
}

void Multifrontal::solveForward(std::int32_t f, std::span<double> x, std::span<double> rows, std::int32_t count) const {
  const Front& front = plan_.fronts[f];
  const auto unknowns = static_cast<std::int32_t>(x.size()) / count;
  double* const own = x.data() + front.firstColumn;
  double* const below = rows.data() + rowStarts_[f] * count;
  for (const std::int32_t child : plan_.childrenOf(f)) {
    const double* const update = rows.data() + rowStarts_[child] * count;
    for (const RowRun& run : plan_.runsOf(child)) {
      for (std::int32_t i = 0; i < run.length; ++i) {
        const std::int32_t row = run.to + i;
        for (std::int32_t k = 0; k < count; ++k) {
          const double value = update[std::int64_t{k} * plan_.fronts[child].rows + run.from + i];
          if (row < front.width)
            own[std::int64_t{k} * unknowns + row] += value;
          else
            below[std::int64_t{k} * front.rows + row - front.width] += value;
        }
      }
    }
  }
  for (std::int32_t block = 0; block < front.panel().blocks(); ++block) {
    const auto [first, n, within, height, L] = takeBlock(front, panel(f), block);
    if (count == 1) {
      cblas_dtrsv(CblasColMajor, CblasLower, CblasNoTrans, CblasNonUnit, n, L, height, own + first, 1);
      if (within > 0)
        cblas_dgemv(CblasColMajor, CblasNoTrans, within, n, -1, L + n, height, own + first, 1, 1, own + first + n, 1);
      if (front.rows > 0)
        cblas_dgemv(CblasColMajor, CblasNoTrans, front.rows, n, -1, L + n + within, height, own + first, 1, 1, below,
                    1);
      continue;
    }
    cblas_dtrsm(CblasColMajor, CblasLeft, CblasLower, CblasNoTrans, CblasNonUnit, n, count, 1, L, height, own + first,
                unknowns);
    if (within > 0)
      cblas_dgemm(CblasColMajor, CblasNoTrans, CblasNoTrans, within, count, n, -1, L + n, height, own + first, unknowns,
                  1, own + first + n, unknowns);
    if (front.rows > 0)
      cblas_dgemm(CblasColMajor, CblasNoTrans, CblasNoTrans, front.rows, count, n, -1, L + n + within, height,
                  own + first, unknowns, 1, below, front.rows);
  }
}

void Multifrontal::solveBackward(std::int32_t f, std::span<double> x, std::span<double> rows,
                                 std::int32_t count) const {
  const Front& front = plan_.fronts[f];
  const auto unknowns = static_cast<std::int32_t>(x.size()) / count;
  double* const own = x.data() + front.firstColumn;
  double* const below = rows.data() + rowStarts_[f] * count;
  if (front.parent >= 0) {
    const Front& parent = plan_.fronts[front.parent];
    const double* const columns = x.data() + parent.firstColumn;
    const double* const others = rows.data() + rowStarts_[front.parent] * count;
    for (const RowRun& run : plan_.runsOf(f)) {
      for (std::int32_t i = 0; i < run.length; ++i) {
        const std::int32_t row = run.to + i;
        for (std::int32_t k = 0; k < count; ++k)
          below[std::int64_t{k} * front.rows + run.from + i] =
              row < parent.width ? columns[std::int64_t{k} * unknowns + row]
                                 : others[std::int64_t{k} * parent.rows + row - parent.width];
      }
    }
  }
  for (std::int32_t block = front.panel().blocks() - 1; block >= 0; --block) {
    const auto [first, n, within, height, L] = takeBlock(front, panel(f), block);
    if (count == 1) {
      if (front.rows > 0)
        cblas_dgemv(CblasColMajor, CblasTrans, front.rows, n, -1, L + n + within, height, below, 1, 1, own + first, 1);
      if (within > 0)
        cblas_dgemv(CblasColMajor, CblasTrans, within, n, -1, L + n, height, own + first + n, 1, 1, own + first, 1);
      cblas_dtrsv(CblasColMajor, CblasLower, CblasTrans, CblasNonUnit, n, L, height, own + first, 1);
      continue;
    }
    if (front.rows > 0)
      cblas_dgemm(CblasColMajor, CblasTrans, CblasNoTrans, n, count, front.rows, -1, L + n + within, height, below,
                  front.rows, 1, own + first, unknowns);
    if (within > 0)
      cblas_dgemm(CblasColMajor, CblasTrans, CblasNoTrans, n, count, within, -1, L + n, height, own + first + n,
                  unknowns, 1, own + first, unknowns);
    cblas_dtrsm(CblasColMajor, CblasLeft, CblasLower, CblasTrans, CblasNonUnit, n, count, 1, L, height, own + first,
                unknowns);
  }
}

}  // namespace gavrel
