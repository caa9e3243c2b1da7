#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "Platform/Result.h"

namespace gavrel {

/// The shell command that prints the digest of the folder "$1": of the names, types, links and contents of everything
/// in it. Modes are left out, since an installation sets them all, and so are times and owners. It fails if anything
/// cannot be read.
inline constexpr std::string_view treeDigestCommand =
    "set -o pipefail; tar --format=gnu --sort=name --mode=0755 --mtime=@0 --owner=0 --group=0 --numeric-owner "
    "--hard-dereference -C \"$1\" -c . | sha256sum";

/// Runs the command and returns what it prints, without the newline.
[[nodiscard]] Result<std::string> treeDigest(const std::filesystem::path& folder);

}  // namespace gavrel
