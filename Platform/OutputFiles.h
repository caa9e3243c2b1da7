#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "Platform/Result.h"

namespace gavrel {

/// Why the files `outputs` cannot all be written, each by replaceFile, while `inputs` stay as they are: one of them
/// would be refused, is a file that is read, or is another one of them, by whatever names and links. To be asked before
/// the work. Empty paths stand for no file.
[[nodiscard]] std::optional<Failure> whyNotWritable(const std::vector<std::filesystem::path>& outputs,
                                                    const std::vector<std::filesystem::path>& inputs);

}  // namespace gavrel
