#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "Platform/Result.h"

namespace gavrel {

/// The shell command that prints the digest of the folder "$1": of the names, types, links and contents of all that is
/// in it. Modes do not count, an installation sets them all; nor do times and owners. It fails if anything cannot be
/// read.
inline constexpr std::string_view treeDigestCommand =
    "set -o pipefail; tar --format=gnu --sort=name --mode=0755 --mtime=@0 --owner=0 --group=0 --numeric-owner "
    "--hard-dereference -C \"$1\" -c . | sha256sum";

/// What the command prints, without the line's end.
[[nodiscard]] Result<std::string> treeDigest(const std::filesystem::path& folder);

}  // namespace gavrel
