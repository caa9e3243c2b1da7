#pragma once

#include <QString>
#include <filesystem>
#include <optional>

#include "Managers/BundleInfo.h"
#include "Managers/VersionInfo.h"

namespace gavrel {

/// Why the running bundle `current`, which has a folder, cannot be replaced by the one in the folder `replacement`.
[[nodiscard]] std::optional<QString> whyNotReplaceable(const BundleInfo& current,
                                                       const std::filesystem::path& replacement);

/// Why the bundle in the folder `replacement` is not what was offered: another program than the running `current`,
/// another version than `offered`, or one that is no newer than the running one.
[[nodiscard]] std::optional<QString> whyNotOffered(const BundleInfo& current, const VersionInfo& offered,
                                                   const std::filesystem::path& replacement);

}  // namespace gavrel
