#pragma once

#include <QString>
#include <filesystem>
#include <optional>

#include "Managers/ArchiveCheck.h"
#include "Platform/FileDescriptor.h"

namespace gavrel {

/// Why there is no room on the disk for `content` both in `folder` and, once more, in `destination`.
[[nodiscard]] std::optional<QString> whyNoRoom(const ArchiveContent& content, const std::filesystem::path& folder,
                                               const std::filesystem::path& destination);

/// Unpacks the open archive into the folder, which exists. No entry is written outside of it: unzip drops the parts of
/// names that lead out. unzip is ended as soon as it has written more than `content`, which the archive may have stated
/// falsely. Returns the reason if not everything was unpacked.
[[nodiscard]] std::optional<QString> unpack(const FileDescriptor& archive, const ArchiveContent& content,
                                            const std::filesystem::path& folder);

}  // namespace gavrel
