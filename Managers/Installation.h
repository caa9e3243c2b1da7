#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

#include "Managers/BundleInfo.h"
#include "Managers/UpdateState.h"

namespace gavrel {

/// An update to install, and the bundle that it replaces.
struct Installation {
  QString archive;                     ///< zip file; the unpacked bundle and the script are put into its folder
  BundleInfo bundle;                   ///< of the running program
  std::vector<QByteArray> publicKeys;  ///< of the updates' signers; none where updates are not signed
  QByteArray signature;                ///< of the archive
  VersionInfo offered;                 ///< what the archive was offered as
};

/// Unpacks the archive and starts the script that replaces the bundle of the running program, which the caller is to
/// end at once. Returns why nothing was started.
[[nodiscard]] std::optional<UpdateError> startInstaller(const Installation& installation);

}  // namespace gavrel
