#pragma once

#include <cstdio>

#include "CommandLine/Commands.h"
#include "Platform/ShownText.h"

namespace gavrel {

/// Flushes standard output; exitStatus::failure, after a line on standard error, if not all of it could be written.
[[nodiscard]] inline int flushOutput() {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return exitStatus::success;
  std::fputs("Failed to write to standard output.\n", stderr);
  return exitStatus::failure;
}

/// Prints the requested help or version or, in one line, what is wrong with the arguments, and a hint at the help.
/// Returns the exit status.
[[nodiscard]] inline int endAfterParsing(const CLI::App& app, const CLI::ParseError& error) {
  if (error.get_exit_code() != 0) {
    std::fprintf(stderr, "%s\nRun with --help for more information.\n", shownText(error.what()).c_str());
    return exitStatus::usage;
  }
  app.exit(error);
  return flushOutput();
}

}  // namespace gavrel
