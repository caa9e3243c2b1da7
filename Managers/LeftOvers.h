#pragma once

#include <filesystem>
#include <optional>

#include "Managers/BundleInfo.h"
#include "Platform/Result.h"

namespace gavrel {

/// Removes what an interrupted installation has left beside the bundle, which has a folder: its copy in "NAME.app.new",
/// its former version in "NAME.app.old" and its mark "NAME.app.update". Without the mark, folders of these names were
/// not made by an installation and stay, unless they are empty. Removes nothing while an installation is going on, and
/// nothing but this user's copies of the same program. Returns the reason if one of these cannot be removed.
[[nodiscard]] std::optional<Failure> removeLeftOvers(const BundleInfo& bundle);

/// Completes or reverts an interrupted installation when `program` is started: if only "NAME.app.old" and the mark are
/// left and the program runs from there, the folder is renamed to "NAME.app"; then removeLeftOvers does the rest.
/// Returns the reason if that is not possible.
[[nodiscard]] std::optional<Failure> settleInstallation(const std::filesystem::path& program);

}  // namespace gavrel
