#include "Managers/UpdateState.h"

#include <QMetaEnum>

namespace gavrel {

QString UpdateError::errorDescription() const {
  switch (kind) {
    case Case::networkError:
      return "Network error: " + reason;
    case Case::checkFailed:
      return "Check failed: " + reason;
    case Case::downloadFailed:
      return "Download failed: " + reason;
    case Case::installationFailed:
      return "Installation failed: " + reason;
    case Case::invalidUrl:
      return "Invalid update URL";
    case Case::invalidResponse:
      return "Invalid server response";
    case Case::noUpdateAvailable:
      return "No update available";
    case Case::invalidVersionFormat:
      return "Invalid version format";
  }
  Q_UNREACHABLE();
}

QString UpdateState::name() const {
  return QMetaEnum::fromType<Case>().valueToKey(static_cast<int>(kind));
}

}  // namespace gavrel
