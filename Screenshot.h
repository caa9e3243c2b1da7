#pragma once

#include "Options.h"

namespace gavrel {

/// Draws the project with these options, the whole structure from an isometric direction, and writes the picture.
/// Returns the exit code: 0, or 1 with a line on standard error that says why there is no picture.
[[nodiscard]] int writeScreenshot(const Options& options);

}  // namespace gavrel
