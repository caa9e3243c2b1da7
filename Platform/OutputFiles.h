#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "Platform/Result.h"

namespace gavrel {

/// Why the files `outputs` cannot all be written, each by replaceFile, while `inputs` stay as they are: an output would
/// be refused, is one of the inputs, or is the same file as another output, whatever names and links lead there. To be
/// called before the work. Empty paths stand for no file.
[[nodiscard]] std::optional<Failure> whyNotWritable(const std::vector<std::filesystem::path>& outputs,
                                                    const std::vector<std::filesystem::path>& inputs);

}  // namespace gavrel
