#include "Factorization/SparseCholesky.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <set>
#include <vector>

using namespace gavrel;

namespace {

using Kind = CholeskyFault::Kind;
using Random = std::mt19937;

std::size_t index(std::int64_t number) {
  return static_cast<std::size_t>(number);
}

/// A lower triangle in the storage of a mesh: whole blocks for groups that are joined, whatever zeros they hold.
struct Stored {
  std::int64_t size;
  std::int64_t blockSize;
  std::vector<std::int64_t> starts{0};
  std::vector<std::int32_t> indices;
  std::vector<double> values;

  /// A chain of groups with some more joints between random ones.
  Stored(std::int64_t groups, std::int64_t blockSize_, Random& random)
      : size(groups * blockSize_), blockSize(blockSize_) {
    for (std::int64_t column = 0; column < size; ++column) {
      const auto group = column / blockSize;
      if (column % blockSize == 0) {
        below_ = {group, std::min(group + 1, groups - 1)};
        below_.insert(group + std::int64_t(random()) % (groups - group));
      }
      for (const std::int64_t other : below_) {
        for (auto row = std::max(column, other * blockSize); row < (other + 1) * blockSize; ++row)
          indices.push_back(static_cast<std::int32_t>(row));
      }
      starts.push_back(std::ssize(indices));
    }
    values.resize(indices.size());
  }

  /// Fills a share of the entries with random numbers and the diagonal so that it outweighs them.
  void fill(double share, Random& random) {
    std::uniform_real_distribution<double> any(-1, 1);
    std::bernoulli_distribution isFilled(share);
    std::vector<double> weights(index(size), 0.5);
    forEachEntry([&](std::size_t k, std::size_t row, std::size_t column) {
      values[k] = row != column && isFilled(random) ? any(random) : 0.0;
      weights[row] += std::abs(values[k]);
      weights[column] += std::abs(values[k]);
    });
    for (std::size_t i = 0; i < weights.size(); ++i) values[index(starts[i])] = weights[i];
  }

  [[nodiscard]] std::vector<double> times(const std::vector<double>& x) const {
    std::vector<double> product(x.size());
    forEachEntry([&](std::size_t k, std::size_t row, std::size_t column) {
      product[row] += values[k] * x[column];
      if (row != column) product[column] += values[k] * x[row];
    });
    return product;
  }

  [[nodiscard]] SymmetricMatrix view() const { return {size, blockSize, starts, indices, values}; }

 private:
  template <class Visit>
  void forEachEntry(Visit&& visit) const {
    for (std::size_t column = 0; column < index(size); ++column) {
      for (auto k = index(starts[column]); k < index(starts[column + 1]); ++k) visit(k, index(indices[k]), column);
    }
  }

  std::set<std::int64_t> below_;
};

void expectSolves(SparseCholesky& cholesky, const Stored& matrix, Random& random) {
  std::uniform_real_distribution<double> any(-10, 10);
  std::vector<double> x(index(matrix.size));
  for (double& entry : x) entry = any(random);
  std::vector<double> found(x.size(), std::numeric_limits<double>::quiet_NaN());
  ASSERT_FALSE(cholesky.factorize(matrix.view()));
  ASSERT_FALSE(cholesky.solve(matrix.times(x), found));
  for (std::size_t i = 0; i < x.size(); ++i) ASSERT_NEAR(found[i], x[i], 1e-10) << i;
}

TEST(SparseCholesky, SolvesWhateverEntriesComeAndGo) {
  Random random(3);
  for (const std::int64_t blockSize : {1, 6}) {
    for (const std::int64_t groups : {1, 2, 7, 60}) {
      Stored matrix(groups, blockSize, random);
      SparseCholesky kept;
      for (const double share : {0.0, 0.02, 0.02, 0.2, 0.01, 0.0, 1.0, 0.1}) {
        SCOPED_TRACE(testing::Message() << groups << " groups of " << blockSize << ", filled to " << share);
        matrix.fill(share, random);
        expectSolves(kept, matrix, random);
        SparseCholesky fresh;
        expectSolves(fresh, matrix, random);
      }
    }
  }
}

/// What stands in the way of the 3 × 3 matrix with these arrays.
CholeskyFault findFault(const std::vector<std::int64_t>& starts, const std::vector<std::int32_t>& indices,
                        const std::vector<double>& values) {
  SparseCholesky cholesky;
  return cholesky.factorize({3, 3, starts, indices, values}).value_or(CholeskyFault{Kind::OutOfMemory, -1, 0});
}

TEST(SparseCholesky, TellsWhichUnknownStandsInTheWay) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    const char* what;
    std::vector<std::int64_t> starts;
    std::vector<std::int32_t> indices;
    std::vector<double> values;
    Kind kind;
    std::int64_t unknown;
  } cases[] = {
      {"too few columns", {0, 1, 2}, {0, 1}, {1, 1}, Kind::Malformed, 0},
      {"too few values", {0, 1, 2, 3}, {0, 1, 2}, {1, 1}, Kind::Malformed, 0},
      {"ends elsewhere", {0, 1, 2, 4}, {0, 1, 2}, {1, 1, 1}, Kind::Malformed, 0},
      {"runs backwards", {0, 2, 1, 3}, {0, 1, 2}, {1, 1, 1}, Kind::Malformed, 1},
      {"diagonal not first", {0, 1, 2, 3}, {0, 2, 2}, {1, 1, 1}, Kind::Malformed, 1},
      {"row twice", {0, 3, 4, 5}, {0, 1, 1, 1, 2}, {9, 1, 1, 9, 9}, Kind::Malformed, 0},
      {"row beyond the end", {0, 1, 3, 4}, {0, 1, 3, 2}, {9, 9, 1, 9}, Kind::Malformed, 1},
      {"empty column", {0, 1, 1, 2}, {0, 2}, {1, 1}, Kind::EmptyColumn, 1},
      {"empty last column", {0, 1, 2, 2}, {0, 1}, {1, 1}, Kind::EmptyColumn, 2},
      {"nan", {0, 2, 4, 5}, {0, 1, 1, 2, 2}, {9, 1, 9, nan, 9}, Kind::NotFinite, 1},
      {"infinity", {0, 1, 2, 3}, {0, 1, 2}, {1, 1, infinity}, Kind::NotFinite, 2},
      {"zero", {0, 1, 2, 3}, {0, 1, 2}, {1, 1, -0.0}, Kind::DiagonalNotPositive, 2},
      {"negative", {0, 2, 3, 4}, {0, 1, 1, 2}, {9, 1, -5, 9}, Kind::DiagonalNotPositive, 1},
      {"indefinite", {0, 2, 3, 4}, {0, 1, 1, 2}, {1, 2, 1, 9}, Kind::PivotNotPositive, 1},
      {"singular", {0, 1, 3, 4}, {0, 1, 2, 2}, {9, 4, 4, 4}, Kind::PivotNotPositive, 2},
      {"overflowing", {0, 2, 3, 4}, {0, 1, 1, 2}, {1e-300, 1e200, 1e300, 9}, Kind::PivotNotPositive, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const CholeskyFault fault = findFault(c.starts, c.indices, c.values);
    EXPECT_EQ(fault.kind, c.kind);
    EXPECT_EQ(fault.unknown, c.unknown);
  }
  EXPECT_EQ(findFault({0, 1, 2, 3}, {0, 1, 2}, {1, -2.5, 1}).value, -2.5);
}

TEST(SparseCholesky, NamesTheUnknownAmongOthersThatAreZero) {
  Random random(6);
  for (const std::size_t unknown : {1u, 101u, 239u}) {
    Stored matrix(40, 6, random);
    matrix.fill(0.1, random);
    matrix.values[index(matrix.starts[unknown - 1]) + 1] = 1000;  // too strong a tie to the unknown before
    SparseCholesky cholesky;
    const auto fault = cholesky.factorize(matrix.view());
    ASSERT_TRUE(fault);
    EXPECT_EQ(fault->kind, Kind::PivotNotPositive);
    EXPECT_EQ(index(fault->unknown), unknown);
    matrix.fill(0.5, random);
    expectSolves(cholesky, matrix, random);  // a fault is not the end of the object
  }
}

}  // namespace
