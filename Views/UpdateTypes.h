#pragma once

#include <qqml.h>

#include "Managers/UpdateManager.h"

namespace gavrel {

/// The update manager under its own name in QML.
struct UpdateManagerInQml {
  Q_GADGET
  QML_FOREIGN(gavrel::UpdateManager)
  QML_NAMED_ELEMENT(UpdateManager)
  QML_UNCREATABLE("The application makes the one that there is.")
};

}  // namespace gavrel
