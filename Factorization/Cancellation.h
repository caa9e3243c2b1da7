#pragma once

#include <atomic>

namespace gavrel {

/// Thrown by work that is given up since its flag was set.
struct Cancellation {};

inline void giveUpIf(const std::atomic<bool>& stop) {
  if (stop) throw Cancellation();
}

}  // namespace gavrel
