#pragma once

#include <memory>
#include <string>

#include "DataModel/Project.h"
#include "Platform/Result.h"

namespace gavrel {

/// Prints on standard error what has failed and why, in one line; returns exitStatus::failure.
int printFailure(const char* what, const Failure& failure);

/// The project of a file; nothing, after printing why, if it cannot be read.
[[nodiscard]] std::shared_ptr<Project> readOrPrintFailure(const std::string& file);

}  // namespace gavrel
