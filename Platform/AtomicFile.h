#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>

#include "Platform/Result.h"

namespace gavrel {

/// Replaces the content of the file at `requested` by `bytes` in one step: a reader, a crash or a full disk sees the
/// old file or the new one, never a part. The bytes are written to a TemporaryFile, flushed to the disk and moved to
/// its place, and the folder is flushed too. Symbolic links are followed and kept; permission bits and, where the user
/// may, the owner are kept; a new file gets the user's default permissions. Streams, see isStream, are written to.
///
/// Where the file can be written to but not be replaced (its folder is read-only, or it belongs to somebody else in a
/// folder like /tmp) it is overwritten, once all bytes are there and the disk has room for them: only a crash or a kill
/// during that write can leave a part.
///
/// Returns the reason when the file was not replaced. A file that its user marked read-only is not replaced. Other hard
/// links to the file keep the old content.
[[nodiscard]] std::optional<Failure> replaceFile(const std::filesystem::path& requested, std::string_view bytes);

/// Receives a content piece by piece: one at a time, though perhaps in several threads.
using ByteSink = std::function<void(std::string_view piece)>;

/// The same for a content that is too large to be put together first: `produce` passes its pieces, in order, to the
/// sink that it is given. It may be called again, with another sink, if the first attempt failed.
[[nodiscard]] std::optional<Failure> replaceFile(const std::filesystem::path& requested,
                                                 const std::function<void(const ByteSink&)>& produce);

/// The reason for which replaceFile would refuse this path at once, if there is one. Call it before long work whose
/// result is to be written there. Writing may still fail later.
[[nodiscard]] std::optional<Failure> whyNotReplaceable(const std::filesystem::path& requested);

}  // namespace gavrel
