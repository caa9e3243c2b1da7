#pragma once

#include <filesystem>

#include "Platform/Result.h"

namespace gavrel {

/// The user's own folder for temporary files, made if it is not there, and the same at every call. The system's
/// temporary folder is shared between users, so this is a folder inside it that nobody else may enter: "gavrel-UID" or,
/// where something else has that name, "gavrel-UID-1" and so on. Fails where no folder can be made.
[[nodiscard]] Result<std::filesystem::path> privateTemporaryFolder();

}  // namespace gavrel
