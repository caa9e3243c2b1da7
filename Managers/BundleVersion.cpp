#include "Managers/BundleVersion.h"

#include <charconv>

#include "Managers/VersionInfo.h"

namespace gavrel {

BundleVersion readVersion(const BundleInfo& bundle) {
  BundleVersion found{.version = QString::fromStdString(bundle.text("CFBundleShortVersionString").value_or(""))};
  const std::string build = bundle.text("CFBundleVersion").value_or("");
  const char* const end = build.data() + build.size();
  qint64 number = 0;
  const auto [rest, error] = std::from_chars(build.data(), end, number);
  if (error == std::errc() && rest == end) found.build = number;
  return found;
}

bool isNewer(const BundleVersion& candidate, const BundleVersion& current) {
  return isNewerVersion(candidate.version, current.version) ||
         (candidate.version == current.version && candidate.build > current.build);
}

}  // namespace gavrel
