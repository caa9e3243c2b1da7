#pragma once

#include <memory>
#include <string>

#include "DataModel/Project.h"
#include "Platform/Result.h"

namespace gavrel {

/// Prints what has failed and why on standard error, in one line; returns exitStatus::failure.
int printFailure(const char* what, const Failure& failure);

/// Reads a project; null, after printing why, if it cannot be read.
[[nodiscard]] std::shared_ptr<Project> readOrPrintFailure(const std::string& file);

}  // namespace gavrel
