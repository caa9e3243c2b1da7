#pragma once

#include <cstdint>
#include <filesystem>

#include "Platform/Result.h"

namespace gavrel {

/// What the directory of a zip archive says that is in it. It may lie.
struct ArchiveContent {
  std::uint64_t entries = 0;
  std::uint64_t bytes = 0;         ///< of all entries, unpacked
  std::uint64_t largestEntry = 0;  ///< bytes, unpacked
};

/// Limits of an update, far beyond any that was ever made.
inline constexpr std::uint64_t maxEntries = 20'000;
inline constexpr std::uint64_t maxBytes = std::uint64_t{4} << 30;
inline constexpr std::uint64_t maxBytesPerPackedByte = 200;

/// The text for a file that is no archive, or a damaged one.
inline constexpr const char* cannotExtract = "Failed to extract update";

/// What is in the archive, from its directory; or why it must not be unpacked: it is no archive, is beyond the limits,
/// or has a name with control characters.
[[nodiscard]] Result<ArchiveContent> readContent(const std::filesystem::path& archive);

}  // namespace gavrel
