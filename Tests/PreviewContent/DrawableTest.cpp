#include "PreviewContent/Drawable.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "Tests/PreviewContent/SceneArea.h"

using namespace gavrel;

namespace {

TEST(Drawable, WhatEndsTheProcessWhenDrawnIsKnownBefore) {
  using Limits = std::numeric_limits<std::int64_t>;
  constexpr std::int64_t largest = (Limits::max() - 2) / 3;
  for (const std::int64_t node : {std::int64_t{0}, std::int64_t{3}, largest, largest + 1, std::int64_t{1} << 62,
                                  Limits::max(), std::int64_t{-1}, -largest, Limits::min()}) {
    for (const bool isBeam : {false, true}) {
      for (const bool atStart : {false, true}) {
        SCOPED_TRACE(std::to_string(node) + (isBeam ? " of a beam" : " of a bar"));
        SceneArea area;
        auto& bar = area.project().trussElements.edit()[0];
        auto& beam = area.project().beamElements.edit()[0];
        (atStart ? (isBeam ? beam.startNodeId : bar.startNodeId) : (isBeam ? beam.endNodeId : bar.endNodeId)) = node;
        if (whyNotDrawable(area.project()))
          EXPECT_DEATH(area.contents.update(), "Fatal error: ");
        else
          area.contents.update();
      }
    }
  }
}

}  // namespace
