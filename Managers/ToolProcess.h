#pragma once

#include <QProcess>
#include <filesystem>
#include <functional>
#include <optional>

#include "Platform/Result.h"

namespace gavrel {

/// Lets `process` run one of the system's tools for itself alone: in an environment of its own, because tools take
/// options and functions from the user's, and with nobody to ask, neither on its input nor on a terminal. `limit`, if
/// any, is called in the new process before the tool; it may call what is safe after fork.
void isolate(QProcess& process, std::function<void()> limit = {});

/// Starts /bin/bash with the script, which outlives this process, in an environment that has none of the user's
/// variables. They are handed on, every "NAME=VALUE" as the value of a variable "GAVREL_OWN_" and a number, for what
/// the script starts at its end. Returns the reason if it cannot be started.
[[nodiscard]] std::optional<Failure> startScript(const std::filesystem::path& script);

}  // namespace gavrel
