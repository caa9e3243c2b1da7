#pragma once

#include <gtest/gtest.h>

#include "DataModel/Vector3.h"

namespace gavrel {

inline void expectNear(const Vector3& actual, const Vector3& expected, double tolerance = 1e-5) {
  EXPECT_NEAR(actual.x, expected.x, tolerance);
  EXPECT_NEAR(actual.y, expected.y, tolerance);
  EXPECT_NEAR(actual.z, expected.z, tolerance);
}

}  // namespace gavrel
