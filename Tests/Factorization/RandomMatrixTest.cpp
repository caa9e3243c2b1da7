#include <cholmod.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <tbb/global_control.h>

#include <chrono>
#include <cmath>
#include <map>
#include <random>
#include <thread>
#include <vector>

#include "Factorization/SparseCholesky.h"

using namespace gavrel;

namespace {

using Random = std::mt19937;
using Kind = CholeskyFault::Kind;

/// A random symmetric matrix: nodes with coordinates in parts that nothing joins, blocks of any size between the nodes
/// of an edge, some unknowns without any coupling.
struct Mesh {
  std::int64_t blockSize;
  std::int64_t size;
  std::vector<std::int64_t> starts{0};
  std::vector<std::int32_t> indices;
  std::vector<double> values;
  std::vector<double> coordinates;

  struct Kinds {
    std::int64_t nodes;
    std::int64_t blockSize;
    int edges;  // of a node, on average
    int reach;  // by how much the numbers of joined nodes differ at most; 0: any
    int parts = 1;
    bool isDense = false;  // one node is joined to all
  };

  Mesh(const Kinds& kinds, Random& random) : blockSize(kinds.blockSize), size(kinds.nodes * kinds.blockSize) {
    std::vector<std::map<std::int32_t, double>> columns(static_cast<std::size_t>(size));
    std::uniform_real_distribution<double> any(-1, 1);
    const auto pick = [&](std::int64_t count) { return std::int64_t(random() % std::uint32_t(count)); };
    std::vector<int> used;  // unknowns of each node that are coupled
    for (std::int64_t node = 0; node < kinds.nodes; ++node) {
      used.push_back(int(pick(blockSize + 1)));
      for (int axis = 0; axis < 3; ++axis) coordinates.push_back(axis == 0 ? double(node) : any(random));
    }
    const auto join = [&](std::int64_t a, std::int64_t b) {
      if (a % kinds.parts != b % kinds.parts) return;
      for (int i = 0; i < used[std::size_t(a)]; ++i) {
        for (int j = 0; j < used[std::size_t(b)]; ++j) {
          const auto [low, high] = std::minmax({a * blockSize + i, b * blockSize + j});
          if (low != high) columns[std::size_t(low)][std::int32_t(high)] = pick(4) == 0 ? 0 : any(random);
        }
      }
    };
    for (std::int64_t node = 0; node < kinds.nodes; ++node) {
      join(node, node);
      for (int edge = 0; edge < kinds.edges; ++edge)
        join(node, kinds.reach == 0 ? pick(kinds.nodes) : std::min(node + pick(kinds.reach), kinds.nodes - 1));
      if (kinds.isDense) join(0, node);
    }
    std::vector<double> weights(static_cast<std::size_t>(size), 0.01);
    for (std::int64_t c = 0; c < size; ++c) {
      for (const auto& [row, value] : columns[std::size_t(c)]) {
        weights[std::size_t(c)] += std::abs(value);
        weights[std::size_t(row)] += std::abs(value);
      }
    }
    for (std::int64_t c = 0; c < size; ++c) {
      columns[std::size_t(c)][std::int32_t(c)] = weights[std::size_t(c)];
      for (const auto& [row, value] : columns[std::size_t(c)]) {
        indices.push_back(row);
        values.push_back(value);
      }
      starts.push_back(std::ssize(indices));
    }
  }

  [[nodiscard]] double& diagonal(std::int64_t unknown) { return values[std::size_t(starts[std::size_t(unknown)])]; }
  [[nodiscard]] SymmetricMatrix view(bool hasCoordinates = true) const {
    return {size, blockSize, starts, indices, values, hasCoordinates ? coordinates : std::span<const double>()};
  }
};

/// What CHOLMOD makes of the matrix: its solution, or none.
std::optional<std::vector<double>> solveByCholmod(const Mesh& mesh, std::vector<double> b) {
  cholmod_common common;
  cholmod_l_start(&common);
  common.print = 0;
  common.supernodal = CHOLMOD_SUPERNODAL;
  std::vector<std::int64_t> rows(mesh.indices.begin(), mesh.indices.end());
  cholmod_sparse view{};
  view.nrow = view.ncol = std::size_t(mesh.size);
  view.nzmax = rows.size();
  view.p = const_cast<std::int64_t*>(mesh.starts.data());
  view.i = rows.data();
  view.x = const_cast<double*>(mesh.values.data());
  view.stype = -1;
  view.itype = CHOLMOD_LONG;
  view.xtype = CHOLMOD_REAL;
  view.sorted = view.packed = 1;
  cholmod_dense right{b.size(), 1, b.size(), b.size(), b.data(), nullptr, CHOLMOD_REAL, CHOLMOD_DOUBLE};
  cholmod_factor* factor = cholmod_l_analyze(&view, &common);
  cholmod_l_factorize(&view, factor, &common);
  std::optional<std::vector<double>> result;
  if (common.status == CHOLMOD_OK) {
    cholmod_dense* x = cholmod_l_solve(CHOLMOD_A, factor, &right, &common);
    const auto* numbers = static_cast<const double*>(x->x);
    result.emplace(numbers, numbers + b.size());
    cholmod_l_free_dense(&x, &common);
  }
  cholmod_l_free_factor(&factor, &common);
  cholmod_l_finish(&common);
  return result;
}

std::vector<double> randomNumbers(std::size_t count, Random& random) {
  std::uniform_real_distribution<double> any(-1, 1);
  std::vector<double> numbers(count);
  for (double& number : numbers) number = any(random);
  return numbers;
}

TEST(RandomMatrix, IsSolvedAsCholmodDoes) {
  Random random(11);
  for (int trial = 0; trial < 2000; ++trial) {
    const auto pick = [&](int count) { return int(random() % std::uint32_t(count)); };
    const Mesh::Kinds kinds{1 + pick(trial % 20 == 0 ? 400 : 40), 1 + pick(6), pick(5),
                            pick(3) == 0 ? 0 : 1 + pick(12),      1 + pick(3), pick(8) == 0};
    SCOPED_TRACE(testing::Message() << "trial " << trial << ", " << kinds.nodes << " nodes of " << kinds.blockSize);
    Mesh mesh(kinds, random);
    const auto nudged = std::int64_t(random() % std::uint32_t(mesh.size));
    if (trial % 4 == 1) mesh.diagonal(nudged) *= 0.01;  // indefinite, mostly
    const double scales[] = {1, 0, 4e305, 5e-324};
    for (double& x : mesh.coordinates) x *= scales[trial / 2 % 4];
    const std::vector<double> b = randomNumbers(std::size_t(mesh.size), random);
    std::vector<double> x(b.size());
    SparseCholesky cholesky(1 + trial % 3);
    const auto fault = cholesky.factorize(mesh.view(trial % 2 == 0));
    const auto reference = solveByCholmod(mesh, b);
    ASSERT_EQ(fault.has_value(), !reference.has_value());
    if (fault) {
      EXPECT_EQ(fault->kind, Kind::PivotNotPositive);
      continue;
    }
    ASSERT_FALSE(cholesky.solve(b, x));
    double largest = 1;
    for (const double entry : *reference) largest = std::max(largest, std::abs(entry));
    for (std::size_t i = 0; i < x.size(); ++i) ASSERT_NEAR(x[i], (*reference)[i], 1e-9 * largest) << i;
  }
}

TEST(RandomMatrix, TellsItsWeakestUnknown) {
  Random random(5);
  for (int trial = 0; trial < 20; ++trial) {
    Mesh mesh({60, 3, 2, 9}, random);
    // Two unknowns in a row of their own that are as good as one.
    mesh.values.assign(mesh.values.size(), 0);
    for (std::int64_t i = 0; i < mesh.size; ++i) mesh.diagonal(i) = 1;
    auto column = std::int64_t(random() % std::uint32_t(mesh.size));
    while (mesh.starts[std::size_t(column + 1)] - mesh.starts[std::size_t(column)] < 2)
      column = (column + 1) % mesh.size;
    const auto k = std::size_t(mesh.starts[std::size_t(column)]) + 1;
    mesh.values[k] = 1 - 1e-16;
    SparseCholesky cholesky;
    ASSERT_FALSE(cholesky.factorize(mesh.view()));
    ASSERT_TRUE(cholesky.weakestUnknown());
    EXPECT_TRUE(*cholesky.weakestUnknown() == column || *cholesky.weakestUnknown() == mesh.indices[k]);
    EXPECT_LT(cholesky.smallestPivotRatio(), 1e-14);
  }
}

/// Coupled so densely that its fronts have several tiles.
Mesh largeMesh() {
  Random random(2);
  return Mesh({4000, 6, 6, 250}, random);
}

TEST(RandomMatrix, GivesTheSameBitsWithAnyNumberOfThreads) {
  const tbb::global_control enough(tbb::global_control::max_allowed_parallelism, 8);
  const Mesh mesh = largeMesh();
  Random random(3);
  constexpr std::int32_t count = 3;
  const std::vector<double> b = randomNumbers(std::size_t(mesh.size * count), random);
  std::vector<double> expected;
  for (const int threads : {1, 2, 3, 8, 0}) {
    SparseCholesky cholesky(threads);
    for (int repetition = 0; repetition < 2; ++repetition) {
      std::vector<double> x(b.size());
      std::vector<double> single(static_cast<std::size_t>(mesh.size));
      ASSERT_FALSE(cholesky.factorize(mesh.view()));
      ASSERT_FALSE(cholesky.solve(b, x, count));
      ASSERT_FALSE(cholesky.solve(b, single));
      for (std::size_t i = 0; i < single.size(); ++i) ASSERT_NEAR(single[i], x[i], 1e-12);
      x.insert(x.end(), single.begin(), single.end());
      if (expected.empty()) expected = x;
      EXPECT_EQ(x, expected) << threads;
    }
  }
}

TEST(RandomMatrix, CanBeCancelled) {
  const Mesh mesh = largeMesh();
  for (const int milliseconds : {0, 1, 5, 10, 20, 50, 100}) {  // in the analysis, too
    SCOPED_TRACE(milliseconds);
    SparseCholesky cholesky;
    using Clock = std::chrono::steady_clock;
    Clock::time_point asked;
    std::thread other([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
      asked = Clock::now();
      cholesky.cancel();
    });
    std::optional<CholeskyFault> fault;
    while (!fault) fault = cholesky.factorize(mesh.view());
    const auto waited = Clock::now();
    other.join();
    EXPECT_EQ(fault->kind, Kind::Cancelled);
    EXPECT_LT(waited - asked, std::chrono::milliseconds(500));
    EXPECT_FALSE(cholesky.factorize(mesh.view()));
  }
}

#if !defined(__SANITIZE_ADDRESS__)  // which reserves far more address space than there is
/// Ends the process with 0 if a factorization within so much further address space and its solution succeed or tell of
/// too little memory.
[[noreturn]] void factorizeWithin(std::size_t mebibytes, const Mesh& mesh, bool hasCoordinates) {
  std::FILE* const file = std::fopen("/proc/self/statm", "r");
  std::size_t pages = 0;
  if (file == nullptr || std::fscanf(file, "%zu", &pages) != 1) std::_Exit(3);
  std::fclose(file);
  const rlim_t most = pages * 4096 + (mebibytes << 20);
  const rlimit limit{most, most};
  if (::setrlimit(RLIMIT_AS, &limit) != 0) std::_Exit(4);
  SparseCholesky cholesky;
  std::vector<double> x(static_cast<std::size_t>(mesh.size), 1.0);
  auto fault = cholesky.factorize(mesh.view(hasCoordinates));
  if (!fault) fault = cholesky.solve(x, x);
  std::_Exit(fault && fault->kind != Kind::OutOfMemory ? 1 : 0);
}

TEST(RandomMatrix, TellsOfTooLittleMemory) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const Mesh mesh = largeMesh();
  for (const std::size_t mebibytes : {1, 10, 50, 100, 150, 200, 300, 400, 600, 1000})
    EXPECT_EXIT(factorizeWithin(mebibytes, mesh, true), testing::ExitedWithCode(0), "") << mebibytes;
  for (const std::size_t mebibytes : {1, 14, 16, 18, 20, 22, 24, 26, 30})  // METIS gives up in the middle
    EXPECT_EXIT(factorizeWithin(mebibytes, mesh, false), testing::ExitedWithCode(0), "") << mebibytes;
}
#endif

}  // namespace
