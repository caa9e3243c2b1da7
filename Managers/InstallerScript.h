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

/// The script for Linux, to be started by startScript. It copies N to "C.new" and puts that in the place of C only once
/// the copy is complete, has the `digest` (see treeDigest) and is on the disk; at every moment C or "C.old" is a
/// complete bundle. If a step fails, the former bundle is in its place and is started with "--update-failed" and the
/// reason. The program to start again is `executable`, relative to the bundle. Any byte may occur in a path.
///
/// While the script and the tools that it waits for run, they hold a lock (flock) on the folder of the copy, whatever
/// its name is then; LeftOvers tests it. Info.plist, which tells what the copy is, is copied first.
[[nodiscard]] std::string linuxInstallerScript(const std::filesystem::path& current,
                                               const std::filesystem::path& replacement,
                                               const std::filesystem::path& executable, const std::string& digest);

}  // namespace gavrel
