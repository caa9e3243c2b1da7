#pragma once

#include <QString>

#include "Managers/BundleInfo.h"

namespace gavrel {

/// The version of the program in a bundle.
struct BundleVersion {
  QString version;   ///< dotted; empty if the bundle does not state it
  qint64 build = 0;  ///< 0 if the bundle does not state it

  friend bool operator==(const BundleVersion&, const BundleVersion&) = default;
};

[[nodiscard]] BundleVersion readVersion(const BundleInfo& bundle);

/// Whether `candidate` is a later version than `current`, or a later build of the same version.
[[nodiscard]] bool isNewer(const BundleVersion& candidate, const BundleVersion& current);

}  // namespace gavrel
