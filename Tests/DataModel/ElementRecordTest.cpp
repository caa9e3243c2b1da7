#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "DataModel/BeamElement.h"
#include "DataModel/TrussElement.h"

using namespace gavrel;

namespace {

TrussElement truss(const Vector3& start, const Vector3& end) {
  return {7, 3, 4, start, end, 100, 210000, true, false};
}

BeamElement beam(const Vector3& start, const Vector3& end) {
  return {7, 3, 4, start, end, 100, 1000, 2000, 210000, 80000, true};
}

TEST(ElementRecord, FoldsSectionAndMaterialIntoFactors) {
  const TrussElement bar = truss({0, 0, 0}, {2, 0, 0});
  EXPECT_EQ(bar.EAL3, 2625000);
  EXPECT_EQ((Vector3{bar.dXx, bar.dXy, bar.dXz}), (Vector3{-2, 0, 0}));
  EXPECT_EQ(bar.materialID, 0);
  EXPECT_TRUE(bar.isCompressionOnly && !bar.isNonLinear);
  EXPECT_DOUBLE_EQ(truss({1, 2, 3}, {2, 0, 5}).EAL3, 21000000.0 / 27);

  const BeamElement joist = beam({0, 0, 0}, {0, 0, 4});
  EXPECT_EQ((Vector3{joist.dXx, joist.dXy, joist.dXz}), (Vector3{0, 0, -4}));
  EXPECT_EQ((std::array{joist.EA, joist.EIy, joist.EIz, joist.GJ}), (std::array{525e4, 525e5, 105e6, 2e7}));
  EXPECT_TRUE(joist.isNonLinear);
}

TEST(ElementRecord, WarnsOfAndDisarmsElementsWithoutLength) {
  testing::internal::CaptureStdout();
  for (const double L : {0.0, 1e-9}) {
    EXPECT_EQ(truss({1, 1, L}, {1, 1, 0}).EAL3, 0);
    const BeamElement joist = beam({1, L, 1}, {1, 0, 1});
    EXPECT_TRUE(joist.EA == 0 && joist.EIy == 0 && joist.EIz == 0 && joist.GJ == 0);
  }
  const double justEnough = std::nextafter(1e-9, 1.0);
  EXPECT_GT(truss({justEnough, 0, 0}, {0, 0, 0}).EAL3, 0);
  EXPECT_GT(beam({justEnough, 0, 0}, {0, 0, 0}).GJ, 0);
  const std::string warnings =
      "Warning: Truss element has zero initial length for ID 7.\n"
      "Warning: Beam element has zero initial length for ID 7.\n";
  EXPECT_EQ(testing::internal::GetCapturedStdout(), warnings + warnings);
}

TEST(ElementRecord, StrainIsThatOfCompressionAndTensileStrainAndForceAreThoseOfTension) {
  TrussElement bar({}, 0, 1, {1, 2, 3}, {2, 0, 5}, 1, 27, false, false);  // X = (-1, 2, -2), L = 3, EAL3 = 1
  bar.dUx = 3;
  bar.dUy = 1;
  bar.dUz = 8;
  EXPECT_DOUBLE_EQ(bar.strain(), 17.0 / 9);
  bar.currentStrain = 18;
  EXPECT_EQ(bar.tensileStrain(), 2);
  EXPECT_DOUBLE_EQ(bar.axialForce(), 18 * 3);
  bar.isNonLinear = true;
  EXPECT_DOUBLE_EQ(bar.axialForce(), 18 * 7) << "on the chord X + U = (2, 3, 6)";
  EXPECT_FALSE(bar.isOut());
  bar.isCompressionOnly = true;
  EXPECT_TRUE(bar.isOut());
  EXPECT_EQ(bar.axialForce(), 0);
  bar.currentStrain = 0;
  EXPECT_FALSE(bar.isOut());
  EXPECT_FALSE(std::isfinite(TrussElement{}.strain()));
}

template <class Record>
class EveryField : public testing::Test {};
using Records = testing::Types<TrussElement, BeamElement>;
TYPED_TEST_SUITE(EveryField, Records);

TYPED_TEST(EveryField, MattersForEqualityAndHash) {
  const std::hash<TypeParam> hash;
  const TypeParam record;
  int fields = 0;
  forEachField<TypeParam>([&](const auto& field) {
    SCOPED_TRACE(field.key);
    ++fields;
    TypeParam other;
    EXPECT_EQ(other, record);
    EXPECT_EQ(hash(other), hash(record));
    auto& value = other.*field.member;
    value = 1;
    EXPECT_NE(other, record);
    EXPECT_NE(hash(other), hash(record));
    if constexpr (std::is_same_v<decltype(value), double&>) {
      value = -0.0;
      EXPECT_EQ(other, record);
      EXPECT_EQ(hash(other), hash(record));
      value = std::numeric_limits<double>::quiet_NaN();
      EXPECT_NE(other, TypeParam(other));
    }
  });
  EXPECT_EQ(fields, (std::is_same_v<TypeParam, TrussElement> ? 15 : 23));
}

}  // namespace
