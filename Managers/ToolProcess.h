#pragma once

#include <QProcess>
#include <filesystem>
#include <functional>
#include <optional>

#include "Platform/Result.h"

namespace gavrel {

/// Prepares `process` to run one of the system's tools in isolation: with a fixed environment, because tools take
/// options and functions from the user's, and without input or a terminal, so that the tool cannot ask anything.
/// `limit`, if any, is called in the new process before the tool; it may call only what is safe after fork.
void isolate(QProcess& process, std::function<void()> limit = {});

/// Starts /bin/bash with the script, which outlives this process, in an environment that has none of the user's
/// variables. Each of them is passed as "NAME=VALUE" in a variable "GAVREL_OWN_" and a number, for the program that the
/// script starts at its end. Returns the reason if bash cannot be started.
[[nodiscard]] std::optional<Failure> startScript(const std::filesystem::path& script);

}  // namespace gavrel
