#pragma once

#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>

#include "Platform/Result.h"

namespace gavrel {

/// The whole content of the file at `path` (a regular file, a pipe or a device), or the reason why it cannot be read,
/// with the path. A file of more than `largest` bytes is refused.
[[nodiscard]] Result<std::string> readFile(const std::filesystem::path& path,
                                           std::uint64_t largest = std::numeric_limits<std::uint64_t>::max());

/// The system's text for the error `code` (an errno value), after what was attempted on which file.
[[nodiscard]] Failure systemFailure(const std::string& attempt, const std::filesystem::path& path, int code);

}  // namespace gavrel
