#pragma once

#include <filesystem>
#include <optional>

#include "Platform/FileDescriptor.h"

namespace gavrel {

/// Where a path leads when something is to be written to it.

/// The folder of the file that a path names; "." for a bare file name.
[[nodiscard]] std::filesystem::path parentFolder(const std::filesystem::path& file);

/// Where the symbolic links at the end of a path lead, even if there is no file yet. Links that stand for open
/// descriptors are not followed.
[[nodiscard]] std::filesystem::path followLinks(std::filesystem::path file);

/// Whether a path, its links followed, stands for a descriptor that some process has open: /dev/stdout, /dev/fd/3,
/// /proc/self/fd/3. The file behind it belongs to the process that opened it: its content must not be replaced.
[[nodiscard]] bool isDescriptor(const std::filesystem::path& followed);

/// Whether a path leads to an open descriptor, a pipe or a device: what is written there is appended and replaces
/// nothing.
[[nodiscard]] bool isStream(const std::filesystem::path& file);

/// Opens such a path for writing after its content and after what this process has printed; a descriptor of this
/// process continues at its position. Not open, with errno set, if that fails.
[[nodiscard]] FileDescriptor openStream(const std::filesystem::path& file);

/// The number of this process's descriptor that a path leads to, open or not; none if it leads elsewhere.
[[nodiscard]] std::optional<int> ownDescriptor(const std::filesystem::path& file);

}  // namespace gavrel
