#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// The first of the names in a folder whose extension is exactly "app".
[[nodiscard]] std::optional<std::string> firstAppEntry(const std::vector<std::string>& names);

/// The shell script that replaces the bundle `current` (C) by a copy of the bundle `replacement` (N) and opens it, for
/// a platform that opens bundles and puts downloaded ones under quarantine. Paths are inserted as they are.
[[nodiscard]] std::string bundleInstallerScript(const std::filesystem::path& current,
                                                const std::filesystem::path& replacement);

/// The same steps for Linux. The program to start again is `executable`, relative to the bundle. Any byte may occur in
/// a path. What fails leaves the former bundle where it was, and that is started with "--update-failed" and the reason.
[[nodiscard]] std::string linuxInstallerScript(const std::filesystem::path& current,
                                               const std::filesystem::path& replacement,
                                               const std::filesystem::path& executable);
