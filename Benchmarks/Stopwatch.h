#pragma once

#include <chrono>

namespace gavrel {

class Stopwatch {
 public:
  /// Seconds since the last lap or the start.
  double lap() {
    const auto now = Clock::now();
    const double seconds = std::chrono::duration<double>(now - last_).count();
    last_ = now;
    return seconds;
  }

 private:
  using Clock = std::chrono::steady_clock;
  Clock::time_point last_ = Clock::now();
};

}  // namespace gavrel
