#pragma once

#include <filesystem>
#include <optional>

#include "Platform/FileDescriptor.h"

namespace gavrel {

/// What a path names where something is to be written.

/// The folder that a path names a file of: "." where it names none.
[[nodiscard]] std::filesystem::path parentFolder(const std::filesystem::path& file);

/// Where the symbolic links at the end of a path lead, even where nothing stands there yet. Links that stand for open
/// descriptors are not followed.
[[nodiscard]] std::filesystem::path followLinks(std::filesystem::path file);

/// Whether a path, its links followed, stands for a descriptor that some process has open: /dev/stdout, /dev/fd/3,
/// /proc/self/fd/3. The file behind it is its opener's: what stands there already is not to be replaced.
[[nodiscard]] bool isDescriptor(const std::filesystem::path& followed);

/// Whether a path leads to an open descriptor, a pipe or a device: what is written there takes nothing's place.
[[nodiscard]] bool isStream(const std::filesystem::path& file);

/// Opens such a path for writing behind what stands there and what this process has printed; a descriptor of this
/// process goes on where it is. Not open, with errno set, where that fails.
[[nodiscard]] FileDescriptor openStream(const std::filesystem::path& file);

/// The number of this process's descriptor that a path leads to, open or not; none if it leads elsewhere.
[[nodiscard]] std::optional<int> ownDescriptor(const std::filesystem::path& file);

}  // namespace gavrel
