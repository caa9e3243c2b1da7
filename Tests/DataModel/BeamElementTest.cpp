#include "DataModel/BeamElement.h"

#include <gtest/gtest.h>

#include <cmath>

#include "Tests/DataModel/AssembledElement.h"

namespace {

constexpr std::size_t size = AssembledElement::size;
const std::vector<double> atRest(size);

struct Entry {
  std::size_t row;
  std::size_t column;
  double value;
};

/// The entries of the effective symmetric matrix in local numbers, those below the diagonal left out. Bending along y
/// is stiff by EIy and coupled by EIz, bending along z the other way round.
std::vector<Entry> expectedEntries(const BeamElement& beam, bool isReversed) {
  const double Lx = beam.dXx;
  const double a1 = 12 * beam.EIy / (Lx * Lx * Lx), a2 = 6 * beam.EIy / (Lx * Lx), a3 = 4 * beam.EIy / Lx, a4 = a3 / 2;
  const double b1 = 12 * beam.EIz / (Lx * Lx * Lx), b2 = 6 * beam.EIz / (Lx * Lx), b3 = 4 * beam.EIz / Lx, b4 = b3 / 2;
  const double EA = beam.EA, GJ = beam.GJ;
  // The table is not symmetric in this one place, and what is read depends on which node has the lower number.
  const double startZWithEndRotation = isReversed ? a2 : -a2;
  return {{0, 0, EA},   {0, 6, -EA}, {6, 6, EA},  {3, 3, GJ},  {3, 9, -GJ},
          {9, 9, GJ},   {1, 1, a1},  {1, 5, b2},  {1, 7, -a1}, {1, 11, b2},
          {5, 5, b3},   {5, 7, -b2}, {5, 11, b4}, {7, 7, a1},  {7, 11, -b2},
          {11, 11, b3}, {2, 2, b1},  {2, 4, -a2}, {2, 8, -b1}, {2, 10, startZWithEndRotation},
          {4, 4, a3},   {4, 8, a2},  {4, 10, a4}, {8, 8, b1},  {8, 10, a2},
          {10, 10, a3}};
}

TEST(BeamElement, AssemblesItsTableInGlobalAxes) {
  for (const Vector3& chord : {Vector3{1, 0, 0}, Vector3{2, 1, -2}, Vector3{-2, -2, 1}}) {
    for (const bool isReversed : {false, true}) {
      SCOPED_TRACE(testing::Message() << "dXx = " << chord.x << (isReversed ? ", reversed" : ""));
      BeamElement beam(0, isReversed, !isReversed, chord, {0, 0, 0}, 2, 3, 5, 7, 11, false);
      const AssembledElement assembled(beam, atRest);
      std::vector<double> expected(size * size);
      for (const Entry& entry : expectedEntries(beam, isReversed)) {
        const std::size_t shift = isReversed ? 6 : 0;
        const std::size_t row = (entry.row + shift) % size, column = (entry.column + shift) % size;
        expected[row * size + column] = expected[column * size + row] = entry.value;
      }
      for (std::size_t i = 0; i < size * size; ++i)
        EXPECT_DOUBLE_EQ(assembled.H(i / size, i % size), expected[i]) << i / size << ", " << i % size;
    }
  }
}

TEST(BeamElement, RecordsItsDeformationWithoutAnyForce) {
  BeamElement beam(0, 1, 0, {1, 0, 0}, {0, 0, 0}, 1, 1, 1, 1, 1, true);
  const AssembledElement assembled(beam, {1, 2, 3, 4, 5, 6, 2, 4, 8, 16, 32, 64});
  EXPECT_EQ(assembled.R_I, atRest);
  EXPECT_EQ((Vector3{beam.dUx, beam.dUy, beam.dUz}), (Vector3{1, 2, 5}));
  EXPECT_EQ((Vector3{beam.dθx, beam.dθy, beam.dθz}), (Vector3{12, 27, 58}));
}

TEST(BeamElement, IsNotFiniteWithoutExtentAlongX) {
  BeamElement beam(0, 0, 1, {0, 0, 4}, {0, 0, 0}, 1, 1, 1, 1, 1, false);
  const AssembledElement assembled(beam, atRest);
  for (const std::size_t dof : {1u, 2u, 4u, 5u}) EXPECT_FALSE(std::isfinite(assembled.H(dof, dof))) << dof;
  EXPECT_EQ(assembled.H(0, 0), 0.25);
  EXPECT_EQ(assembled.H(3, 9), -0.25);
}

}  // namespace
