#pragma once

#include <string>
#include <vector>

#include "Tests/Text.h"

namespace gavrel {

/// What a run of gavrel-cli left behind.
struct CommandOutcome {
  int status = -1;  ///< exit status; -1 after a signal
  int signal = 0;
  std::string output;
  std::string errors;
};

struct CommandStreams {
  std::string outputPath = {};     ///< where standard output goes; empty: it is captured
  bool errorsToTerminal = false;   ///< standard error is a pseudo-terminal, captured too
  unsigned long addressSpace = 0;  ///< in bytes; 0: as much as there is
};

/// Runs gavrel-cli with these arguments and an empty standard input, and waits for its end.
[[nodiscard]] CommandOutcome gavrelCli(const std::vector<std::string>& arguments, const CommandStreams& streams = {});

/// A project of one bar between a held node and one that is pulled along x by 20 and rolls there; EA/L = 1000. A load
/// on the pulled node's restrained y keeps it from ever converging.
[[nodiscard]] std::string singleBarJson(double loadOnRestraint = 0);

}  // namespace gavrel
