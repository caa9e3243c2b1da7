#include "DataModel/CSR.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

#include "DataModel/BeamElement.h"
#include "DataModel/TrussElement.h"

using namespace gavrel;

namespace {

using Columns = std::vector<std::vector<std::int32_t>>;
using Random = std::mt19937;

template <class Element>
Element joining(std::int64_t start, std::int64_t end) {
  Element element;
  element.startNodeId = start;
  element.endNodeId = end;
  return element;
}

std::size_t index(std::int64_t number) {
  return static_cast<std::size_t>(number);
}

/// Elements between random nodes: some are repeated, some join a node to itself, some nodes stay alone.
struct RandomElements {
  std::int64_t nI;
  std::vector<TrussElement> trusses;
  std::vector<BeamElement> beams;

  explicit RandomElements(Random& random) : nI(6 * (1 + std::int64_t(random() % 8))) {
    const auto node = [&] { return std::int64_t(random()) % (nI / 6); };
    for (auto count = random() % 8; count > 0; --count) trusses.push_back(joining<TrussElement>(node(), node()));
    for (auto count = random() % 3; count > 0; --count) beams.push_back(joining<BeamElement>(node(), node()));
  }

  /// The unknowns of each element: `perNode` of its start, then of its end.
  [[nodiscard]] std::vector<std::vector<std::int64_t>> dofs(std::int64_t perNode) const {
    std::vector<std::vector<std::int64_t>> all;
    const auto add = [&](const auto& element) {
      all.emplace_back();
      for (const std::int64_t node : {element.startNodeId, element.endNodeId}) {
        for (std::int64_t k = 0; k < perNode; ++k) all.back().push_back(6 * node + k);
      }
    };
    for (const auto& truss : trusses) add(truss);
    for (const auto& beam : beams) add(beam);
    return all;
  }
};

/// All unknowns of each element's nodes with each other, on and above the diagonal.
Columns coupledBy(const RandomElements& elements) {
  std::vector<std::set<std::int32_t>> rows(index(elements.nI));
  for (const auto& dofs : elements.dofs(6))
    for (const auto r : dofs)
      for (const auto c : dofs)
        if (c >= r) rows[index(r)].insert(static_cast<std::int32_t>(c));
  Columns columns;
  for (const auto& row : rows) columns.emplace_back(row.begin(), row.end());
  return columns;
}

TEST(CSR, DistinctAtOrderedKeepsWhatExceedsAllBefore) {
  EXPECT_EQ(CSR::DistinctAtOrdered({-3, -1, 0, 0, 1, 4, 4, 4, 9}), (std::vector<std::int32_t>{0, 1, 4, 9}));
  EXPECT_EQ(CSR::DistinctAtOrdered({2, 1, 3, 0, 3, 5}), (std::vector<std::int32_t>{2, 3, 5}));
  EXPECT_EQ(CSR::DistinctAtOrdered({}), (std::vector<std::int32_t>{}));
}

/// One element added entry by entry: for each row, the last local entry to name a column counts.
void addLiterally(std::map<std::pair<std::int64_t, std::int64_t>, double>& H, std::vector<double>& R,
                  const std::vector<double>& H_vv, const std::vector<double>& F_v, const std::vector<std::int64_t>& I_v,
                  const std::vector<bool>& D_I) {
  for (std::size_t a = 0; a < I_v.size(); ++a) {
    std::map<std::int64_t, std::size_t> positions;
    if (!D_I[index(I_v[a])]) {
      R[index(I_v[a])] -= F_v[a];
      for (std::size_t b = 0; b < I_v.size(); ++b) {
        if (!D_I[index(I_v[b])] && I_v[a] < I_v[b]) positions[I_v[b]] = a * I_v.size() + b;
      }
    }
    H[{I_v[a], I_v[a]}] += H_vv[a * I_v.size() + a];
    for (const auto& [column, position] : positions) H[{I_v[a], column}] += H_vv[position];
  }
}

TEST(CSR, AssemblesAnyElementsUnderAnyRestraints) {
  Random random(22);
  std::uniform_real_distribution<double> any(-1, 1);
  for (int i = 0; i < 400; ++i) {
    const RandomElements elements(random);
    const Columns pattern = CSR::CreateSparsityPattern(elements.trusses, elements.beams, elements.nI);
    ASSERT_EQ(pattern, coupledBy(elements));
    CSR matrix(pattern);
    std::vector<bool> D_I(index(elements.nI));
    for (auto&& held : D_I) held = i % 5 == 4 || random() % 5 < unsigned(i) % 5;
    std::vector<double> R_I(D_I.size(), 1.0);
    std::vector<double> expectedR = R_I;
    std::map<std::pair<std::int64_t, std::int64_t>, double> expectedH;
    std::vector<std::int64_t> vv_J(D_I.size());
    for (const auto& I_v : elements.dofs(i % 2 == 0 ? 3 : 6)) {
      std::vector<double> H_vv(I_v.size() * I_v.size());
      std::vector<double> F_v(I_v.size());
      for (double& entry : H_vv) entry = any(random);
      for (double& entry : F_v) entry = any(random);
      matrix.makeAssembly(H_vv, F_v, I_v, R_I, D_I, vv_J);
      addLiterally(expectedH, expectedR, H_vv, F_v, I_v, D_I);
    }
    ASSERT_EQ(vv_J, std::vector<std::int64_t>(D_I.size()));
    ASSERT_EQ(R_I, expectedR);
    for (std::int64_t row = 0; row < elements.nI; ++row) {
      for (auto k = matrix.starts[index(row)]; k < matrix.starts[index(row + 1)]; ++k) {
        const auto entry = expectedH.extract({row, matrix.indices[index(k)]});
        ASSERT_EQ(matrix.values[index(k)], entry.empty() ? 0.0 : entry.mapped());
      }
    }
    ASSERT_TRUE(expectedH.empty());
  }
}

TEST(CSR, WhatLiesOutsideTheArraysEndsTheProcess) {
  const auto create = [](std::int64_t start, std::int64_t end, std::int64_t nI) {
    static_cast<void>(CSR::CreateSparsityPattern({joining<TrussElement>(start, end)}, {}, nI));
  };
  EXPECT_DEATH(create(-1, 0, 12), "index -1 is outside the rows of the matrix");
  EXPECT_DEATH(create(0, 2, 12), "index 17 is outside the rows of the matrix, which has 12 entries");
  EXPECT_DEATH(create(0, 1, 11), "index 11 is outside the rows of the matrix, which has 11 entries");
  EXPECT_DEATH(create(0, INT64_MAX / 6 + 1, 12), "too large");
  EXPECT_DEATH(create(0, 357913941, 6 * 357913942L), "degree of freedom 2147483651 does not fit into 32 bits");

  const auto assemble = [&](std::size_t nR, std::size_t nD, std::size_t nJ) {
    CSR matrix(Columns{{0, 1}, {1}});
    std::vector<double> R_I(nR);
    std::vector<std::int64_t> vv_J(nJ);
    matrix.makeAssembly(std::vector<double>(4), std::vector<double>(2), std::vector<std::int64_t>{0, 1}, R_I,
                        std::vector<bool>(nD), vv_J);
  };
  assemble(2, 2, 2);
  EXPECT_DEATH(assemble(1, 2, 2), "index 1 is outside R_I");
  EXPECT_DEATH(assemble(2, 1, 2), "index 1 is outside D_I");
  EXPECT_DEATH(assemble(2, 2, 1), "index 1 is outside vv_J");
}

}  // namespace
