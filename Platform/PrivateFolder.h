#pragma once

#include <filesystem>

#include "Platform/Result.h"

/// The user's own folder for temporary files, made if it is not there. The system's temporary folder is shared between
/// users, so this is a folder inside it that nobody else may enter; one that is not, whoever made it, is refused.
[[nodiscard]] Result<std::filesystem::path> privateTemporaryFolder();
