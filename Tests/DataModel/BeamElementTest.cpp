#include "DataModel/BeamElement.h"

#include <gtest/gtest.h>

#include <cmath>

#include "Tests/DataModel/AssembledElement.h"

using namespace gavrel;

namespace {

constexpr std::size_t size = AssembledElement::size;
const std::vector<double> atRest(size);

/// The entries on and above the diagonal that are not zero, worked out by hand from the two formulas of bending,
/// 12, 6, 4 and 2 over the third, second and first power of the length along x.
struct Entry {
  std::size_t row, column;
  double unit;          ///< dXx = 1: EA = 14, EIy = 21, EIz = 35, GJ = 33
  double unitReversed;  ///< the same from node 1 to node 0
  double along;         ///< dXx = 4, L = 6: EA = 2, EIy = 16, EIz = 32, GJ = 4
  double against;       ///< the same with dXx = -4
};
constexpr Entry entries[] = {
    {0, 0, 14, 14, 2, 2},      {0, 6, -14, -14, -2, -2},   {6, 6, 14, 14, 2, 2},         {3, 3, 33, 33, 4, 4},
    {3, 9, -33, -33, -4, -4},  {9, 9, 33, 33, 4, 4},       {1, 1, 252, 252, 3, -3},      {1, 5, 210, -210, 12, 12},
    {1, 7, -252, -252, -3, 3}, {1, 11, 210, -210, 12, 12}, {5, 5, 140, 140, 32, -32},    {5, 7, -210, 210, -12, -12},
    {5, 11, 70, 70, 16, -16},  {7, 7, 252, 252, 3, -3},    {7, 11, -210, 210, -12, -12}, {11, 11, 140, 140, 32, -32},
    {2, 2, 420, 420, 6, -6},   {2, 4, -126, 126, -6, -6},  {2, 8, -420, -420, -6, 6},    {2, 10, -126, 126, -6, -6},
    {4, 4, 84, 84, 16, -16},   {4, 8, 126, 126, 6, 6},     {4, 10, 42, 42, 8, -8},       {8, 8, 420, 420, 6, -6},
    {8, 10, 126, -126, 6, 6},  {10, 10, 84, 84, 16, -16}};

TEST(BeamElement, StiffnessIsThatOfABeamAlongXWithBendingPlanesCrossed) {
  const struct {
    double Entry::*expected;
    BeamElement beam;
  } cases[] = {{&Entry::unit, {0, 0, 1, {1, 0, 0}, {0, 0, 0}, 2, 3, 5, 7, 11, false}},
               {&Entry::unitReversed, {0, 1, 0, {1, 0, 0}, {0, 0, 0}, 2, 3, 5, 7, 11, false}},
               {&Entry::along, {0, 0, 1, {4, 4, 2}, {0, 0, 0}, 12, 96, 192, 1, 0.25, false}},
               {&Entry::against, {0, 0, 1, {0, 2, 0}, {4, 0, 4}, 12, 96, 192, 1, 0.25, false}}};
  for (const auto& [expected, beam] : cases) {
    SCOPED_TRACE(testing::Message() << "case " << &expected - &cases[0].expected);
    BeamElement assembledBeam = beam;
    const AssembledElement assembled(assembledBeam, atRest);
    std::vector<double> all(size * size);
    for (const Entry& entry : entries)
      all[entry.row * size + entry.column] = all[entry.column * size + entry.row] = entry.*expected;
    for (std::size_t i = 0; i < size * size; ++i)
      EXPECT_DOUBLE_EQ(assembled.H(i / size, i % size), all[i]) << i / size << ", " << i % size;
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
