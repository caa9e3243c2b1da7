#pragma once

#include <filesystem>
#include <optional>

#include "Managers/BundleInfo.h"
#include "Platform/Result.h"

namespace gavrel {

/// Removes what an interrupted installation has left beside the bundle, which has a folder: its copy in "NAME.app.new",
/// its former version in "NAME.app.old" and its mark "NAME.app.update". Without the mark, folders of these names are
/// somebody's own, unless they are empty. Removes nothing while an installation is going on, and nothing that is not
/// this user's copy of the same program. Returns the reason if something of that kind cannot be removed.
[[nodiscard]] std::optional<Failure> removeLeftOvers(const BundleInfo& bundle);

/// Puts right what an interrupted installation has left, seen from the program that is started: where only
/// "NAME.app.old" and the mark are left, and `program` runs from it, it is renamed to "NAME.app"; then removeLeftOvers
/// does the rest. Returns the reason if that is not possible.
[[nodiscard]] std::optional<Failure> settleInstallation(const std::filesystem::path& program);

}  // namespace gavrel
