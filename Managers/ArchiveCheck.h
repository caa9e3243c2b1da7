#pragma once

#include <cstdint>
#include <filesystem>

#include "Platform/Result.h"

namespace gavrel {

/// The content of a zip archive as its directory states it, which may be false.
struct ArchiveContent {
  std::uint64_t entries = 0;
  std::uint64_t bytes = 0;         ///< of all entries, unpacked
  std::uint64_t largestEntry = 0;  ///< bytes, unpacked
};

/// Limits of an update's archive, far above the size of any real one.
inline constexpr std::uint64_t maxEntries = 20'000;
inline constexpr std::uint64_t maxBytes = std::uint64_t{4} << 30;
inline constexpr std::uint64_t maxBytesPerPackedByte = 200;

/// The error text for a file that is not an archive, or a damaged one.
inline constexpr const char* cannotExtract = "Failed to extract update";

/// Reads the directory of the archive, or fails with the reason why it must not be unpacked: it is not an archive,
/// exceeds the limits, or has a name with control characters.
[[nodiscard]] Result<ArchiveContent> readContent(const std::filesystem::path& archive);

}  // namespace gavrel
