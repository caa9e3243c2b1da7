#pragma once

#include <QString>
#include <filesystem>
#include <optional>

#include "Managers/ArchiveCheck.h"
#include "Platform/FileDescriptor.h"

/// The path by which a process opens the file of one of its own descriptors, whatever has become of its name.
[[nodiscard]] std::filesystem::path descriptorPath(const FileDescriptor& file);

/// Why there is no room on the disk for `content` both in `folder` and, once more, in `destination`.
[[nodiscard]] std::optional<QString> whyNoRoom(const ArchiveContent& content, const std::filesystem::path& folder,
                                               const std::filesystem::path& destination);

/// Unpacks the open archive into the folder, which exists. No entry leaves it: unzip drops what points outwards in its
/// name. It is ended as soon as there is more than `content`, which the archive may have lied about. Returns why not
/// all is there.
[[nodiscard]] std::optional<QString> unpack(const FileDescriptor& archive, const ArchiveContent& content,
                                            const std::filesystem::path& folder);
