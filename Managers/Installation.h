#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "Managers/UpdateState.h"
#include "Platform/BundleInfo.h"

/// What is to be installed, and in place of what.
struct Installation {
  QString archive;       ///< zip file; its folder takes what is made on the way
  BundleInfo bundle;     ///< of the running program
  QByteArray publicKey;  ///< of the updates' signer; empty where updates are not signed
  QByteArray signature;  ///< of the archive
};

/// Unpacks the archive and starts the script that replaces the bundle of the running program, which the caller is to
/// end at once. Returns why nothing was started.
[[nodiscard]] std::optional<UpdateError> startInstaller(const Installation& installation);
