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

/// Unpacks the open archive into the folder, which exists. No entry leaves it: unzip drops what points outwards in its
/// name. It is ended as soon as there is more than `content`, which the archive may have lied about. Returns why not
/// all is there.
[[nodiscard]] std::optional<QString> unpack(const FileDescriptor& archive, const ArchiveContent& content,
                                            const std::filesystem::path& folder);

}  // namespace gavrel
