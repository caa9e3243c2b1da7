#include "Managers/VersionInfo.h"
#include "Tests/Fuzz/Require.h"

using namespace gavrel;

/// What decodes is encoded as something that decodes to the same, and of two versions at most one is newer.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  const auto manifest = decodeManifest(bytes);
  if (!manifest) return 0;
  for (const VersionInfo& info : *manifest) {
    const auto again = decodeManifest("{\"app\":" + encode(info) + "}");
    require(again && again->size() == 1 && again->first() == info, "the version changed on its way");
    for (const VersionInfo& other : *manifest) {
      const bool newer = isNewerVersion(info.version, other.version);
      require(!newer || !isNewerVersion(other.version, info.version), "each newer than the other");
    }
  }
  return 0;
}
