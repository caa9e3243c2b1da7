#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace gavrel {

/// The first of the names in a folder whose extension is exactly "app".
[[nodiscard]] std::optional<std::string> firstAppEntry(const std::vector<std::string>& names);

/// The shell script that replaces the bundle `current` (C) by a copy of the bundle `replacement` (N) and opens it, for
/// a platform that opens bundles and puts downloaded ones under quarantine. Paths are inserted as they are.
[[nodiscard]] std::string bundleInstallerScript(const std::filesystem::path& current,
                                                const std::filesystem::path& replacement);

/// The script for Linux, to be started by startScript. It copies N to "C.new", which is whole, equal to what had the
/// `digest` (see treeDigest) and on the disk before it takes the place of C; at every moment C or "C.old" is a whole
/// bundle. What fails leaves the former one in its place, and that is started with "--update-failed" and the reason.
/// The program to start again is `executable`, relative to the bundle. Any byte may occur in a path.
///
/// While it works it has a lock (flock) on the folder of the copy, whatever that is called, as have the tools that it
/// waits for; LeftOvers asks for it. The file that tells what the copy is comes first.
[[nodiscard]] std::string linuxInstallerScript(const std::filesystem::path& current,
                                               const std::filesystem::path& replacement,
                                               const std::filesystem::path& executable, const std::string& digest);

}  // namespace gavrel
