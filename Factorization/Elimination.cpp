#include "Factorization/Elimination.h"

#include <cblas.h>

#include <algorithm>
#include <cmath>
#include <thread>
#include <utility>

namespace gavrel {

/// LAPACK's Cholesky factorization of a dense matrix, which OpenBLAS holds.
extern "C" void dpotrf_(const char* triangle, const std::int32_t* n, double* A, const std::int32_t* lda,
                        std::int32_t* info);

namespace {

/// C -= A · Bᵀ, or C = −A · Bᵀ; column by column, all with rows far apart as told.
void subtractProduct(std::int32_t m, std::int32_t n, std::int32_t k, const double* A, std::int32_t lda, const double* B,
                     std::int32_t ldb, bool isFirst, double* C, std::int32_t ldc) {
  cblas_dgemm(CblasColMajor, CblasNoTrans, CblasTrans, m, n, k, -1, A, lda, B, ldb, isFirst ? 0.0 : 1.0, C, ldc);
}

/// The lower triangle of C −= A · Aᵀ, or of C = −A · Aᵀ.
void subtractSquare(std::int32_t n, std::int32_t k, const double* A, std::int32_t lda, bool isFirst, double* C,
                    std::int32_t ldc) {
  cblas_dsyrk(CblasColMajor, CblasLower, CblasNoTrans, n, k, -1, A, lda, isFirst ? 0.0 : 1.0, C, ldc);
}

}  // namespace

Elimination::Elimination(const Fronts& plan, std::int32_t front, std::span<const double> values, double* panel,
                         double* update, std::vector<Child> children)
    : plan_(plan),
      front_(plan.fronts[front]),
      values_(values),
      panel_(front_.panel()),
      update_(front_.update()),
      panelValues_(panel),
      updateValues_(update),
      children_(std::move(children)),
      panelBlocks_(panel_.blocks()) {
  for (std::int32_t row = 0; row < front_.width; row += Trapezoid::width) cuts_.push_back(row);
  for (std::int32_t row = 0; row < front_.rows; row += Trapezoid::width) cuts_.push_back(front_.width + row);
  cuts_.push_back(front_.width + front_.rows);
  const auto count = static_cast<std::int32_t>(cuts_.size()) - 1;
  for (std::int32_t j = 0; j < count; ++j)
    for (std::int32_t i = j; i < count; ++i) tileOf_.push_back({i, j});
  done_ = std::vector<std::atomic<bool>>(tileOf_.size());
}

double* Elimination::tile(std::int32_t i, std::int32_t j) const {
  if (j < panelBlocks_) return panelValues_ + panel_.column(cuts_[j]) + cuts_[i];
  return updateValues_ + update_.column(cuts_[j] - front_.width) + cuts_[i] - front_.width;
}

std::int32_t Elimination::leading(std::int32_t j) const {
  return j < panelBlocks_ ? panel_.height(j) : update_.height(j - panelBlocks_);
}

std::int32_t Elimination::numberOf(std::int32_t i, std::int32_t j) const {
  const auto count = static_cast<std::int32_t>(cuts_.size()) - 1;
  return j * count - j * (j - 1) / 2 + i - j;
}

void Elimination::work(const std::atomic<bool>& stop) {
  for (std::int32_t t = next_++; t < tiles(); t = next_++) {
    const auto [i, j] = tileOf_[t];
    const bool isDone = j < panelBlocks_ ? eliminatePanelTile(i, j, stop) : computeUpdateTile(i, j, stop);
    if (!isDone) return;
    done_[t].store(true, std::memory_order_release);
  }
}

/// Tiles are begun in the order of columns and never wait for one begun later, so that somebody always gets on.
bool Elimination::await(std::int32_t i, std::int32_t j, const std::atomic<bool>& stop) const {
  const auto& done = done_[numberOf(i, j)];
  while (!done.load(std::memory_order_acquire)) {
    if (stop.load(std::memory_order_relaxed) || failed_.load(std::memory_order_relaxed)) return false;
    std::this_thread::yield();
  }
  return true;
}

bool Elimination::eliminatePanelTile(std::int32_t i, std::int32_t j, const std::atomic<bool>& stop) {
  double* const C = tile(i, j);
  const std::int32_t ldc = leading(j);
  const std::int32_t m = height(i);
  const std::int32_t n = height(j);
  for (std::int32_t c = 0; c < n; ++c)
    std::fill_n(C + std::int64_t{c} * ldc + (i == j ? c : 0), m - (i == j ? c : 0), 0.0);
  addEntries(i, j);
  addChildren(i, j);
  for (std::int32_t k = 0; k < j; ++k) {
    if (!await(i, k, stop) || !await(j, k, stop)) return false;
    if (i == j)
      subtractSquare(m, height(k), tile(i, k), leading(k), false, C, ldc);
    else
      subtractProduct(m, n, height(k), tile(i, k), leading(k), tile(j, k), leading(k), false, C, ldc);
  }
  if (i == j) return factorizeDiagonal(j);
  if (!await(j, j, stop)) return false;
  cblas_dtrsm(CblasColMajor, CblasRight, CblasLower, CblasTrans, CblasNonUnit, m, n, 1, tile(j, j), ldc, C, ldc);
  return true;
}

bool Elimination::computeUpdateTile(std::int32_t i, std::int32_t j, const std::atomic<bool>& stop) {
  double* const C = tile(i, j);
  const std::int32_t ldc = leading(j);
  for (std::int32_t k = 0; k < panelBlocks_; ++k) {
    if (!await(i, k, stop) || !await(j, k, stop)) return false;
    if (i == j)
      subtractSquare(height(i), height(k), tile(i, k), leading(k), k == 0, C, ldc);
    else
      subtractProduct(height(i), height(j), height(k), tile(i, k), leading(k), tile(j, k), leading(k), k == 0, C, ldc);
  }
  addChildren(i, j);
  return true;
}

void Elimination::addEntries(std::int32_t i, std::int32_t j) {
  for (std::int32_t c = cuts_[j]; c < cuts_[j + 1]; ++c) {
    const std::int32_t column = front_.firstColumn + c;
    double* const target = panelValues_ + panel_.column(c);
    auto k = plan_.entryStarts[column];
    const auto end = plan_.entryStarts[column + 1];
    while (k < end && plan_.entryRows[k] < cuts_[i]) ++k;
    for (; k < end && plan_.entryRows[k] < cuts_[i + 1]; ++k)
      target[plan_.entryRows[k]] += values_[plan_.entrySources[k]];
  }
}

void Elimination::addChildren(std::int32_t i, std::int32_t j) {
  const std::int32_t rowBegin = cuts_[i];
  const std::int32_t rowEnd = cuts_[i + 1];
  const std::int32_t columnBegin = cuts_[j];
  const std::int32_t columnEnd = cuts_[j + 1];
  const bool isPanel = j < panelBlocks_;
  for (const Child& child : children_) {
    const auto endsBy = [](const RowRun& run, std::int32_t row) { return run.to + run.length <= row; };
    const auto firstRows = std::lower_bound(child.runs.begin(), child.runs.end(), rowBegin, endsBy);
    const auto firstColumns = std::lower_bound(child.runs.begin(), child.runs.end(), columnBegin, endsBy);
    for (auto columns = firstColumns; columns != child.runs.end() && columns->to < columnEnd; ++columns) {
      const std::int32_t begin = std::max(columns->to, columnBegin);
      const std::int32_t end = std::min(columns->to + columns->length, columnEnd);
      for (std::int32_t c = begin; c < end; ++c) {
        double* const target =
            isPanel ? panelValues_ + panel_.column(c) : updateValues_ + update_.column(c - front_.width) - front_.width;
        const double* const source = child.values + child.shape.column(c - columns->to + columns->from);
        for (auto rows = i == j ? columns : firstRows; rows != child.runs.end() && rows->to < rowEnd; ++rows) {
          const std::int32_t first = std::max({rows->to, rowBegin, c});
          const std::int32_t last = std::min(rows->to + rows->length, rowEnd);
          const std::int32_t shift = rows->from - rows->to;
          for (std::int32_t row = first; row < last; ++row) target[row] += source[row + shift];
        }
      }
    }
  }
}

bool Elimination::factorizeDiagonal(std::int32_t j) {
  double* const A = tile(j, j);
  const std::int32_t n = height(j);
  const std::int32_t leadingDimension = leading(j);
  std::int32_t info = 0;
  const char lower = 'L';
  dpotrf_(&lower, &n, A, &leadingDimension, &info);
  const std::int32_t finished = info > 0 ? info - 1 : n;
  for (std::int32_t c = 0; c < finished && !bad_; ++c) {
    const double pivot = A[std::int64_t{c} * leadingDimension + c];
    if (!std::isfinite(pivot)) bad_ = {front_.firstColumn + cuts_[j] + c, pivot};
  }
  if (!bad_ && info > 0) bad_ = {front_.firstColumn + cuts_[j] + finished, 0};
  if (bad_) failed_ = true;
  return !bad_;
}

LeastPart Elimination::leastPart() const {
  LeastPart least;
  for (std::int32_t c = 0; c < front_.width; ++c) {
    const std::int32_t column = front_.firstColumn + c;
    const double pivot = panelValues_[panel_.column(c) + c];
    const double left = pivot * pivot / values_[plan_.entrySources[plan_.entryStarts[column]]];
    if (left < least.part) least = {left, column};
  }
  return least;
}

}  // namespace gavrel
