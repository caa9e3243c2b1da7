#include "Platform/SparseCholesky.h"

#include <cholmod.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "Platform/KernelResources.h"

namespace gavrel {

static_assert(sizeof(SuiteSparse_long) == sizeof(std::int64_t));

namespace {

using Kind = CholeskyFault::Kind;

/// Parts of the graph below this size are not dissected further. Lattices of 10^3 to 40^3 nodes need 1 % to 15 % fewer
/// operations than with CHOLMOD's own value of 200.
constexpr std::size_t smallestPart = 50;

/// A pivot smaller than this fraction of its diagonal entry consists of rounding errors.
constexpr double lostPivot = 1e-14;

SuiteSparse_long* asLong(std::vector<std::int64_t>& numbers) {
  return reinterpret_cast<SuiteSparse_long*>(numbers.data());  // two names of the same 64-bit integer
}

/// CHOLMOD's workspace and settings. It never prints and never ends the process for a fault of the matrix.
class Common {
 public:
  Common() {
    cholmod_l_start(&common_);
    common_.print = 0;
    common_.supernodal = CHOLMOD_SUPERNODAL;
    common_.nmethods = 1;
  }
  Common(const Common&) = delete;
  Common& operator=(const Common&) = delete;
  ~Common() { cholmod_l_finish(&common_); }

  cholmod_common* get() { return &common_; }
  cholmod_common* operator->() { return &common_; }

 private:
  cholmod_common common_{};
};

/// Owners for what CHOLMOD allocates. The Common must outlive them.
struct FreeFactor {
  cholmod_common* common;
  void operator()(cholmod_factor* factor) const { cholmod_l_free_factor(&factor, common); }
};
struct FreeDense {
  cholmod_common* common;
  void operator()(cholmod_dense* dense) const { cholmod_l_free_dense(&dense, common); }
};
using Factor = std::unique_ptr<cholmod_factor, FreeFactor>;
using Dense = std::unique_ptr<cholmod_dense, FreeDense>;

/// A lower triangle in CHOLMOD's form, on arrays that the caller owns; without values it is a pattern.
cholmod_sparse lowerTriangle(std::vector<std::int64_t>& starts, std::vector<std::int64_t>& rows, double* values) {
  cholmod_sparse view{};
  view.nrow = view.ncol = starts.size() - 1;
  view.nzmax = rows.size();
  view.p = starts.data();
  view.i = rows.data();
  view.x = values;
  view.stype = -1;
  view.itype = CHOLMOD_LONG;
  view.xtype = values != nullptr ? CHOLMOD_REAL : CHOLMOD_PATTERN;
  view.dtype = CHOLMOD_DOUBLE;
  view.sorted = 1;
  view.packed = 1;
  return view;
}

std::optional<CholeskyFault> findStructureFault(const SymmetricMatrix& matrix) {
  const auto entries = static_cast<std::int64_t>(matrix.indices.size());
  if (std::ssize(matrix.starts) != matrix.size + 1 || matrix.values.size() != matrix.indices.size() ||
      matrix.starts.front() != 0 || matrix.starts.back() != entries)
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

std::optional<CholeskyFault> findValueFault(const SymmetricMatrix& matrix) {
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

/// Fill-reducing order of the selected unknowns. The graph of the groups of unknowns is ordered, which is a small part
/// of the graph of all unknowns and keeps those of a group together.
std::vector<std::int64_t> computeFillReducingOrder(const CholeskySelection& selection, std::int64_t blockSize,
                                                   Common& common) {
  std::vector<std::int64_t> groupOf(selection.unknowns.size());
  std::vector<std::int64_t> firstOf;  // the first unknown of each group
  for (std::size_t i = 0; i < groupOf.size(); ++i) {
    const bool sameGroup = i > 0 && selection.unknowns[i] / blockSize == selection.unknowns[i - 1] / blockSize;
    if (!sameGroup) firstOf.push_back(static_cast<std::int64_t>(i));
    groupOf[i] = static_cast<std::int64_t>(firstOf.size()) - 1;
  }
  firstOf.push_back(static_cast<std::int64_t>(groupOf.size()));

  std::vector<std::int64_t> starts{0};
  std::vector<std::int64_t> neighbours;
  for (std::size_t group = 0; group + 1 < firstOf.size(); ++group) {
    const auto groupStart = neighbours.size();
    for (auto column = firstOf[group]; column < firstOf[group + 1]; ++column) {
      const auto begin = selection.starts[static_cast<std::size_t>(column)];
      const auto end = selection.starts[static_cast<std::size_t>(column + 1)];
      for (auto k = begin; k < end; ++k) {
        const auto other = groupOf[static_cast<std::size_t>(selection.rows[static_cast<std::size_t>(k)])];
        if (neighbours.size() == groupStart || other != neighbours.back()) neighbours.push_back(other);
      }
    }
    const auto first = neighbours.begin() + static_cast<std::ptrdiff_t>(groupStart);
    std::sort(first, neighbours.end());
    neighbours.erase(std::unique(first, neighbours.end()), neighbours.end());
    starts.push_back(static_cast<std::int64_t>(neighbours.size()));
  }

  cholmod_sparse graph = lowerTriangle(starts, neighbours, nullptr);
  common->method[0].ordering = CHOLMOD_NESDIS;  // nested dissection by METIS, its small parts and separators by CAMD
  common->method[0].nd_small = smallestPart;
  const Factor ordered(cholmod_l_analyze(&graph, common.get()), {common.get()});
  std::vector<std::int64_t> order;
  if (!ordered) return order;
  order.reserve(groupOf.size());
  for (std::size_t i = 0; i + 1 < firstOf.size(); ++i) {
    const auto group = static_cast<std::size_t>(static_cast<SuiteSparse_long*>(ordered->Perm)[i]);
    for (auto unknown = firstOf[group]; unknown < firstOf[group + 1]; ++unknown) order.push_back(unknown);
  }
  return order;
}

/// Calls `visit(step, entry)` for each diagonal entry of a supernodal factor, in the order of elimination.
template <class Visit>
void forEachPivot(const cholmod_factor& factor, Visit&& visit) {
  const auto* super = static_cast<const SuiteSparse_long*>(factor.super);
  const auto* rowStart = static_cast<const SuiteSparse_long*>(factor.pi);
  const auto* valueStart = static_cast<const SuiteSparse_long*>(factor.px);
  const auto* values = static_cast<const double*>(factor.x);
  for (std::size_t s = 0; s < factor.nsuper; ++s) {
    const auto leading = rowStart[s + 1] - rowStart[s];
    for (auto step = super[s]; step < super[s + 1]; ++step)
      visit(step, values[valueStart[s] + (step - super[s]) * (leading + 1)]);
  }
}

}  // namespace

struct SparseCholesky::State {
  Common common;
  CholeskySelection selection;
  std::vector<double> selected;   // values of the selected entries
  std::vector<double> uncoupled;  // diagonals of the unknowns that are solved by division
  Factor analysis{nullptr, {common.get()}};
  Factor factor{nullptr, {common.get()}};
  double operations = 0;
  bool analysed = false;

  std::optional<std::int64_t> weakest;
  double smallestPivotRatio = 1;

  /// Place in the selection of what is eliminated at `step`.
  [[nodiscard]] std::size_t placeAt(std::int64_t step) const {
    return static_cast<std::size_t>(static_cast<const SuiteSparse_long*>(analysis->Perm)[step]);
  }
  [[nodiscard]] std::int64_t unknownAt(std::int64_t step) const { return selection.unknowns[placeAt(step)]; }

  /// Compares each pivot with its diagonal entry: one that is not finite is a fault, one no larger than rounding errors
  /// makes its unknown the weakest.
  std::optional<CholeskyFault> inspectPivots() {
    std::optional<CholeskyFault> fault;
    forEachPivot(*factor, [&](std::int64_t step, double entry) {
      if (!fault && !std::isfinite(entry)) fault = CholeskyFault{Kind::PivotNotFinite, unknownAt(step), entry};
      const double diagonal = selected[static_cast<std::size_t>(selection.starts[placeAt(step)])];
      const double ratio = entry * entry / diagonal;
      if (!(ratio < smallestPivotRatio)) return;
      smallestPivotRatio = ratio;
      if (ratio < lostPivot) weakest = unknownAt(step);
    });
    return fault;
  }
};

SparseCholesky::SparseCholesky() : state_(std::make_unique<State>()) {}
SparseCholesky::SparseCholesky(SparseCholesky&&) noexcept = default;
SparseCholesky& SparseCholesky::operator=(SparseCholesky&&) noexcept = default;
SparseCholesky::~SparseCholesky() = default;

std::optional<CholeskyFault> SparseCholesky::analyse(const SymmetricMatrix& matrix) {
  State& s = *state_;
  if (!s.analysed) {
    if (const auto fault = findStructureFault(matrix)) return fault;
  }
  if (const auto fault = findValueFault(matrix)) return fault;

  s.selected.resize(s.selection.sources.size());
  if (!s.analysed || !s.selection.gather(matrix, s.selected)) {
    s.analysis.reset();
    s.selection = CholeskySelection::select(matrix, s.selection);
    s.selected.resize(s.selection.sources.size());
    if (!s.selection.gather(matrix, s.selected)) return CholeskyFault{Kind::Malformed, 0, 0};
    s.analysed = true;
  }
  s.uncoupled.clear();
  for (const std::int64_t unknown : s.selection.uncoupled) {
    const auto diagonal = matrix.starts[static_cast<std::size_t>(unknown)];
    s.uncoupled.push_back(matrix.values[static_cast<std::size_t>(diagonal)]);
  }
  if (s.analysis || s.selection.unknowns.empty()) return std::nullopt;

  if (!reserveKernelBuffer()) return CholeskyFault{Kind::OutOfMemory, 0, 0};
  std::vector<std::int64_t> order = computeFillReducingOrder(s.selection, matrix.blockSize, s.common);
  if (order.empty()) return CholeskyFault{Kind::OutOfMemory, 0, 0};
  cholmod_sparse view = lowerTriangle(s.selection.starts, s.selection.rows, s.selected.data());
  s.common->method[0].ordering = CHOLMOD_GIVEN;
  s.analysis.reset(cholmod_l_analyze_p(&view, asLong(order), nullptr, 0, s.common.get()));
  if (!s.analysis) return CholeskyFault{Kind::OutOfMemory, 0, 0};
  s.operations = s.common->fl;
  return std::nullopt;
}

std::optional<CholeskyFault> SparseCholesky::factorize(const SymmetricMatrix& matrix) {
  State& s = *state_;
  dropFactor();
  s.weakest.reset();
  s.smallestPivotRatio = 1;
  if (const auto fault = analyse(matrix)) return fault;
  if (!s.analysis) return std::nullopt;

  setKernelThreads(s.operations);
  cholmod_sparse view = lowerTriangle(s.selection.starts, s.selection.rows, s.selected.data());
  s.factor.reset(cholmod_l_copy_factor(s.analysis.get(), s.common.get()));
  if (!s.factor || cholmod_l_factorize(&view, s.factor.get(), s.common.get()) == 0) {
    dropFactor();
    return CholeskyFault{Kind::OutOfMemory, 0, 0};
  }
  std::optional<CholeskyFault> fault;
  if (s.common->status == CHOLMOD_NOT_POSDEF) {
    fault = CholeskyFault{Kind::PivotNotPositive, s.unknownAt(static_cast<std::int64_t>(s.factor->minor)), 0};
  } else {
    fault = s.inspectPivots();
  }
  if (fault) dropFactor();
  return fault;
}

std::optional<CholeskyFault> SparseCholesky::solve(std::span<const double> b, std::span<double> x) {
  State& s = *state_;
  for (std::size_t i = 0; i < s.uncoupled.size(); ++i) {
    const auto unknown = static_cast<std::size_t>(s.selection.uncoupled[i]);
    x[unknown] = b[unknown] / s.uncoupled[i];
  }
  if (!s.factor) return std::nullopt;

  const auto& unknowns = s.selection.unknowns;
  const Dense right(cholmod_l_allocate_dense(unknowns.size(), 1, unknowns.size(), CHOLMOD_REAL, s.common.get()),
                    {s.common.get()});
  if (!right) return CholeskyFault{Kind::OutOfMemory, 0, 0};
  auto* const given = static_cast<double*>(right->x);
  for (std::size_t i = 0; i < unknowns.size(); ++i) given[i] = b[static_cast<std::size_t>(unknowns[i])];
  const Dense solution(cholmod_l_solve(CHOLMOD_A, s.factor.get(), right.get(), s.common.get()), {s.common.get()});
  if (!solution) return CholeskyFault{Kind::OutOfMemory, 0, 0};
  const auto* const found = static_cast<const double*>(solution->x);
  for (std::size_t i = 0; i < unknowns.size(); ++i) x[static_cast<std::size_t>(unknowns[i])] = found[i];
  return std::nullopt;
}

std::optional<std::int64_t> SparseCholesky::weakestUnknown() const {
  return state_->weakest;
}

double SparseCholesky::smallestPivotRatio() const {
  return state_->smallestPivotRatio;
}

void SparseCholesky::dropFactor() {
  state_->factor.reset();
}

}  // namespace gavrel
