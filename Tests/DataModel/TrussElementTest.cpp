#include "DataModel/TrussElement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "Tests/DataModel/AssembledElement.h"

using namespace gavrel;

namespace {

constexpr std::size_t size = AssembledElement::size;

/// A bar from x = 2 to x = 0 with EAL3 = 4 and the start moved by d along x: it lengthens for positive d.
struct MovedBar {
  TrussElement bar;
  AssembledElement assembled;

  MovedBar(double d, bool isCompressionOnly, bool isNonLinear)
      : bar(0, 0, 1, {2, 0, 0}, {0, 0, 0}, 16, 2, isCompressionOnly, isNonLinear),
        assembled(bar, {d, 0, 0, 9, 9, 9, 0, 0, 0, 8, 8, 8}) {}

  bool addsNothing() const {
    return std::ranges::count(assembled.H_II.values, 0.0) == std::ssize(assembled.H_II.values) &&
           assembled.R_I == std::vector<double>(size);
  }
};

TEST(TrussElement, CompressionOnlyBarDropsOutInTension) {
  for (const bool isNonLinear : {false, true}) {
    const MovedBar stretched(0.25, true, isNonLinear);
    EXPECT_TRUE(stretched.addsNothing());
    EXPECT_EQ(stretched.bar.dUx, 0.25);
    EXPECT_EQ(stretched.bar.currentStrain, isNonLinear ? 0.53125 : 0.5);
    EXPECT_EQ(stretched.bar.axialForce(), 0);

    EXPECT_EQ(MovedBar(0, true, isNonLinear).assembled.H(0, 0), 16);
    const MovedBar compressed(-0.25, true, isNonLinear);
    const MovedBar ordinary(-0.25, false, isNonLinear);
    EXPECT_EQ(compressed.assembled.H_II.values, ordinary.assembled.H_II.values);
    EXPECT_EQ(compressed.assembled.R_I, ordinary.assembled.R_I);
    EXPECT_LT(compressed.bar.axialForce(), 0);
  }
}

/// Energy EAL3 · q^2 / 2 of a bar at the displacements U.
double energy(const TrussElement& bar, const std::vector<double>& U) {
  const auto s = static_cast<std::size_t>(firstDof(bar.startNodeId));
  const auto e = static_cast<std::size_t>(firstDof(bar.endNodeId));
  const double X[] = {bar.dXx, bar.dXy, bar.dXz};
  double q = 0;
  for (std::size_t k = 0; k < 3; ++k) {
    const double d = U[s + k] - U[e + k];
    q += X[k] * d + (bar.isNonLinear ? d * d / 2 : 0);
  }
  return bar.EAL3 * q * q / 2;
}

TEST(TrussElement, ForceAndStiffnessAreGradientAndHessianOfTheEnergy) {
  constexpr double h = 1e-5;
  std::mt19937 random(11);
  std::uniform_real_distribution<double> any(-1, 1);
  for (int i = 0; i < 40; ++i) {
    const bool isNonLinear = i % 2 == 0;
    const bool isReversed = i % 4 < 2;
    const Vector3 start{any(random), any(random), any(random)};
    TrussElement bar(0, isReversed, !isReversed, start, {start.x + 1, start.y + any(random), any(random)}, 1, 1.5,
                     false, isNonLinear);
    SCOPED_TRACE(testing::Message() << "bar " << i);
    std::vector<double> U(size);
    for (double& u : U) u = any(random) / 2;
    const AssembledElement assembled(bar, U);
    for (std::size_t row = 0; row < size; ++row) {
      const double at = U[row];
      U[row] = at + h;
      const AssembledElement after(bar, U);
      const double energyAfter = energy(bar, U);
      U[row] = at - h;
      const AssembledElement before(bar, U);
      EXPECT_NEAR(-assembled.R_I[row], (energyAfter - energy(bar, U)) / (2 * h), 1e-8);
      U[row] = at;
      for (std::size_t column = 0; column < size; ++column)
        EXPECT_NEAR(assembled.H(row, column), -(after.R_I[column] - before.R_I[column]) / (2 * h), 1e-8);
    }
  }
}

}  // namespace
