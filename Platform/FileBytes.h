#pragma once

#include <filesystem>
#include <string>

#include "Platform/Result.h"

/// The whole content of the file at `path` (a regular file, a pipe or a device), or the system's reason why it cannot
/// be read, led by the path.
[[nodiscard]] Result<std::string> readFile(const std::filesystem::path& path);

/// The system's text for the error `code` (an errno value), after what was attempted on which file.
[[nodiscard]] Failure systemFailure(const std::string& attempt, const std::filesystem::path& path, int code);
