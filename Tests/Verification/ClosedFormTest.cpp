#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

#include "Tests/Verification/SolvedExample.h"

using namespace gavrel;

namespace {

using testing::DoubleNear;
using testing::Each;

constexpr double E = 210e9;  // Pa: the steel of all examples in this file

TEST(ClosedForm, SingleBar) {
  const SolvedExample solved = solveExample("single-bar");
  EXPECT_THAT(solved.U(1, 0), closeTo(50e3 * 2 / (E * 1e-3)));  // F L / (E A)
  EXPECT_THAT(solved.force(0, 1), closeTo(50e3));
  EXPECT_EQ(solved.norms.size(), 2U);
}

/// Four panels of 6 m, 4 m high, 60 kN at each of the three inner lower nodes: reactions of 90 kN, chords by moments,
/// diagonals (slope 4 in 5) by shear.
TEST(ClosedForm, WarrenTruss) {
  const SolvedExample solved = solveExample("warren-truss");
  const auto expectMirrored = [&](std::int64_t a, std::int64_t b, double force) {
    const auto mirrored = [](std::int64_t node) { return node < 5 ? 4 - node : 13 - node; };
    EXPECT_THAT(solved.force(a, b), closeTo(force)) << a << "-" << b;
    EXPECT_THAT(solved.force(mirrored(a), mirrored(b)), closeTo(force)) << "mirror of " << a << "-" << b;
  };
  expectMirrored(0, 1, 90e3 * 3 / 4);
  expectMirrored(1, 2, (90e3 * 9 - 60e3 * 3) / 4);
  expectMirrored(5, 6, -90e3 * 6 / 4);
  expectMirrored(6, 7, -(90e3 * 12 - 60e3 * 6) / 4);
  expectMirrored(0, 5, -90e3 * 5 / 4);
  expectMirrored(5, 1, 90e3 * 5 / 4);
  expectMirrored(1, 6, -30e3 * 5 / 4);
  expectMirrored(6, 2, 30e3 * 5 / 4);
  // Unit load at midspan: the products N n L of lower chord, upper chord and diagonals.
  const double products = (2430e3 + 2835e3) + (1406.25e3 + 468.75e3);
  EXPECT_THAT(solved.U(2, 1), closeTo(-products / (E * 2e-3)));
  EXPECT_EQ(solved.norms.size(), 2U);
}

/// 4 m wide, 3 m high, 24 kN sideways at the head. The diagonal that would be stretched drops out after the first step;
/// the other one, a column and the beam's rigid motion remain.
TEST(ClosedForm, BracedPanel) {
  const SolvedExample solved = solveExample("braced-panel");
  const double H = 24e3;
  EXPECT_THAT(solved.force(3, 0), closeTo(-H * 5 / 4));
  EXPECT_EQ(solved.force(2, 1), 0);
  EXPECT_GT(solved.bar(2, 1).currentStrain, 0);
  EXPECT_THAT(solved.force(2, 0), closeTo(H * 3 / 4));
  EXPECT_THAT(solved.force(3, 1), DoubleNear(0, 1e-6 * H));
  const double sway = H * (25.0 / 16 * 5 / (E * 5e-4) + 9.0 / 16 * 3 / (E * 1e-3));
  for (const std::int64_t node : {0, 1}) EXPECT_THAT(solved.U(node, 0), closeTo(sway));
  EXPECT_THAT(solved.U(0, 1), closeTo(H * 3 / 4 * 3 / (E * 1e-3)));
  EXPECT_EQ(solved.norms.size(), 3U);
}

/// With the exact tangent the last steps gain twice as many digits each.
void expectQuadraticConvergence(const std::vector<double>& norms) {
  ASSERT_GT(norms.size(), 3U);
  for (std::size_t i = 2; i < norms.size(); ++i)
    EXPECT_LT(norms[i], 4 * norms[i - 1] * norms[i - 1]) << "step " << i + 1;
}

/// Two bars of half span sqrt(18) m and rise 0.6 m whose apex is pushed down by 28 % of the rise:
/// P = 2 EAL3 (h w - w^2/2) (h - w).
TEST(ClosedForm, SnapThrough) {
  const SolvedExample solved = solveExample("snap-through");
  const double h = 0.6;
  const double w = 0.28 * h;
  const double EAL3 = E * 1e-3 / std::pow(18 + h * h, 1.5);
  const double q = -(h * w - w * w / 2);
  ASSERT_THAT((*solved.project->F_I)[6 * 2 + 2], closeTo(2 * EAL3 * q * (h - w)));
  EXPECT_THAT(solved.U(2, 2), closeTo(-w));
  for (const std::int64_t across : {0, 1}) EXPECT_THAT(solved.U(2, across), DoubleNear(0, 1e-9 * w));
  const double force = EAL3 * q * std::hypot(std::sqrt(18), h - w);
  for (const std::int64_t foot : {0, 1}) EXPECT_THAT(solved.force(foot, 2), closeTo(force));
  EXPECT_THAT(solved.force(3, 2), DoubleNear(0, 1e-9 * std::abs(force)));
  expectQuadraticConvergence(solved.norms);
}

/// Six ribs, a ring of radius 12 m and twelve legs; 84 kN on the apex. By symmetry the forces follow from equilibrium
/// alone, and the apex moves by the sum of N^2 L / (E A) over the load.
TEST(ClosedForm, SpaceDome) {
  const SolvedExample solved = solveExample("space-dome");
  const double share = 84e3 / 6;
  const double r = 12;
  const double lower = 9;
  const double upper = 3.5;
  const double rib = std::hypot(r, upper);
  const double outwards = 12 * std::numbers::sqrt3 - r;  // of the legs' feet from the ring
  const double leg = std::hypot(outwards, 12, lower);
  const double ribForce = -share * rib / upper;
  const double legForce = -share / 2 * leg / lower;
  const double ringForce = share * (r / upper - outwards / lower);
  for (std::int64_t i = 0; i < 6; ++i) {
    EXPECT_THAT(solved.force(0, 1 + i), closeTo(ribForce)) << i;
    EXPECT_THAT(solved.force(1 + i, 7 + i), closeTo(legForce)) << i;
    EXPECT_THAT(solved.force(1 + i, 7 + (i + 5) % 6), closeTo(legForce)) << i;
    EXPECT_THAT(solved.force(1 + i, 1 + (i + 1) % 6), closeTo(ringForce)) << i;
  }
  const double squares = 6 * ribForce * ribForce * rib + 12 * legForce * legForce * leg + 6 * ringForce * ringForce * r;
  EXPECT_THAT(solved.U(0, 2), closeTo(-squares / (E * 1e-3) / 84e3));
  EXPECT_EQ(solved.norms.size(), 2U);
}

/// The same dome flat and geometrically non-linear, under the loads that belong to a chosen displaced shape.
TEST(ClosedForm, ShallowDome) {
  const SolvedExample solved = solveExample("shallow-dome");
  EXPECT_THAT(solved.U(0, 2), closeTo(-0.2));
  EXPECT_THAT(solved.U(0, 0), DoubleNear(0, 1e-9));
  for (std::int64_t node = 1; node <= 6; ++node) {
    const Vector3 X = solved.coordinates(node);
    EXPECT_THAT(solved.U(node, 0), DoubleNear(0.002 * X.x / 12, 2e-9)) << node;
    EXPECT_THAT(solved.U(node, 1), DoubleNear(0.002 * X.y / 12, 2e-9)) << node;
    EXPECT_THAT(solved.U(node, 2), closeTo(-0.03)) << node;
  }
  expectQuadraticConvergence(solved.norms);
}

/// Beams add stiffness but no internal force, so the residual never falls: fifty times the same increment. For elements
/// of unit length one increment is the textbook's deflection P x^2 (3 L - x) / (6 E I). Rotations count from y to x and
/// from x to z, that is against the right-hand rule.
TEST(ClosedForm, Cantilever) {
  const SolvedExample solved = solveExample("cantilever");
  const double P = 100;
  const double L = 3;
  const double EI = E * (std::pow(0.1, 4) - std::pow(0.09, 4)) / 12;
  for (std::int64_t node = 0; node < 3; ++node) {
    const auto x = static_cast<double>(3 - node);
    EXPECT_THAT(solved.U(node, 2), closeTo(-50 * P * x * x * (3 * L - x) / (6 * EI))) << node;
    EXPECT_THAT(solved.U(node, 4), closeTo(-50 * P * x * (2 * L - x) / (2 * EI))) << node;
  }
  EXPECT_EQ(solved.norms.size(), 50U);
  EXPECT_THAT(solved.norms, Each(1.0));
}

/// A hanger of stiffness EA/2 at the middle of a clamped girder of 24 EI: the girder takes one fifth of each increment
/// and gives it back as residual, so the displacement creeps from the shared F / (kb + kt) to the hanger's F / kt.
TEST(ClosedForm, HungGirder) {
  const SolvedExample solved = solveExample("hung-girder");
  const double F = 20e3;
  const double kt = E * 1.92e-4 / 2;
  const double kb = 24 * E * 1e-6;
  const double ratio = kb / (kb + kt);
  ASSERT_EQ(solved.norms.size(), 9U);
  for (std::size_t step = 0; step < solved.norms.size(); ++step)
    EXPECT_THAT(solved.norms[step], closeTo(std::pow(ratio, static_cast<double>(step))));
  const double reached = F * (1 - std::pow(ratio, 8));
  EXPECT_NEAR(solved.U(1, 1), -reached / kt, 1e-9 * reached / kt);
  EXPECT_NEAR(solved.force(3, 1), reached, 1e-9 * reached);
}

/// Columns and guy are statically determinate; the girder follows them as a rigid body, which bends no beam, so the
/// answer is that of the bars and comes in one step.
TEST(ClosedForm, MixedFrame) {
  const SolvedExample solved = solveExample("mixed-frame");
  const double guy = 15e3 * 5 / 3;
  const double right = -(100e3 + 15e3 * 4 / 3);
  const double left = -60e3;
  EXPECT_THAT(solved.force(0, 7), closeTo(guy));
  EXPECT_THAT(solved.force(0, 5), closeTo(right));
  EXPECT_THAT(solved.force(4, 6), closeTo(left));
  const double vRight = right * 4 / (E * 2e-3);
  const double vLeft = left * 4 / (E * 2e-3);
  const double u = (4 * vRight - 5 * (guy * 5 / (E * 5e-4))) / 3;
  for (std::int64_t node = 0; node < 5; ++node) {
    EXPECT_THAT(solved.U(node, 0), closeTo(u)) << node;
    EXPECT_THAT(solved.U(node, 1), closeTo(vRight + (vLeft - vRight) * static_cast<double>(node) / 4)) << node;
    EXPECT_THAT(solved.U(node, 5), closeTo((vLeft - vRight) / 4)) << node;
  }
  EXPECT_EQ(solved.norms.size(), 2U);
}

}  // namespace
