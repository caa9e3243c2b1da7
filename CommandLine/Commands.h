#pragma once

#include <CLI/CLI.hpp>

namespace gavrel {

/// Exit statuses of gavrel-cli.
namespace exitStatus {
inline constexpr int success = 0;
inline constexpr int failure = 1;       ///< a file could not be read or written
inline constexpr int notConverged = 2;  ///< with --strict only
inline constexpr int findings = 3;      ///< the check has found something worse than doubtful
inline constexpr int usage = 64;        ///< the arguments are not understood
}  // namespace exitStatus

/// Each adds a subcommand that sets `status`, which must outlive `app`, to its exit status.
void addSolveCommand(CLI::App& app, int& status);
void addCheckCommand(CLI::App& app, int& status);
void addExportCommand(CLI::App& app, int& status);
void addImportCommand(CLI::App& app, int& status);
void addInfoCommand(CLI::App& app, int& status);
void addGenerateCommand(CLI::App& app, int& status);

}  // namespace gavrel
