#include <gtest/gtest.h>

#include "Tests/Verification/SolvedExample.h"

/// What a cut through a structure at right angles to an axis must carry is known from the loads alone, however the bars
/// share it.

namespace {

double along(const Vector3& v, int axis) {
  return axis == 0 ? v.x : axis == 1 ? v.y : v.z;
}

struct Resultant {
  Vector3 force;
  double momentAboutY = 0;

  void add(const Vector3& f, const Vector3& at) {
    force = {force.x + f.x, force.y + f.y, force.z + f.z};
    momentAboutY += at.z * f.x - at.x * f.z;
  }
};

/// What the bars that cross the plane where the coordinate along `axis` is `place` exert on the part below it; moments
/// are about the origin.
Resultant carriedBy(const Project& project, int axis, double place) {
  Resultant result;
  for (const TrussElement& bar : *project.trussElements) {
    const Vector3 start = *project.getNodeCoordinates(bar.startNodeId);
    const Vector3 end = *project.getNodeCoordinates(bar.endNodeId);
    const bool startBelow = along(start, axis) < place;
    if (startBelow == (along(end, axis) < place)) continue;
    const Vector3 outward = startBelow ? end - start : start - end;
    const double perLength = bar.axialForce() / length(outward);
    result.add({perLength * outward.x, perLength * outward.y, perLength * outward.z}, startBelow ? start : end);
  }
  return result;
}

/// Resultant of the loads beyond the plane.
Resultant loadsBeyond(const Project& project, int axis, double place) {
  Resultant result;
  const auto& F = *project.F_I;
  for (std::int64_t node = 0; node < project.nodeCount(); ++node) {
    const Vector3 at = *project.getNodeCoordinates(node);
    const auto i = static_cast<std::size_t>(dofsPerNode * node);
    if (along(at, axis) > place) result.add({F[i], F[i + 1], F[i + 2]}, at);
  }
  return result;
}

void expectNear(const Resultant& actual, const Resultant& expected) {
  constexpr double tolerance = 1e-6 * 1000;  // the loads are of the order of 1000
  EXPECT_LE(length(actual.force - expected.force), tolerance);
  EXPECT_NEAR(actual.momentAboutY, expected.momentAboutY, tolerance);
}

}  // namespace

TEST(Section, LatticeCarriesItsLoadThroughEveryLayer) {
  const SolvedExample example = solveExample("lattice");
  for (const double x : {0.5, 1.5, 2.5, 3.5})
    expectNear(carriedBy(*example.project, 0, x), {.force = {0, 0, -100}, .momentAboutY = 100 * 4.0});
}

TEST(Section, BridgeCarriesShearAndBendingOfASimpleBeam) {
  const SolvedExample example = solveExample("bridge");
  for (const double x : {2.5, 7.5, 12.5, 17.5, 22.5, 37.5}) {
    Resultant expected = loadsBeyond(*example.project, 0, x);
    expected.add({0, 0, 500}, {40, 0, 0});  // by symmetry each end bears half of the load
    const Resultant actual = carriedBy(*example.project, 0, x);
    expected.force.y = actual.force.y;  // held sideways at both ends, so this one depends on the stiffnesses
    expectNear(actual, expected);
  }
}

TEST(Section, DomeBearsDownWhatStandsAboveEachRing) {
  const SolvedExample example = solveExample("dome");
  for (const double z : {5.8, 5.0, 3.5, 1.0})
    expectNear(carriedBy(*example.project, 2, z), loadsBeyond(*example.project, 2, z));
}
