#pragma once

#include <qqml.h>
#include <QObject>

#include "PreviewContent/ProjectViewModel.h"

namespace gavrel {

/// What QML sees of the program's plain C++.

struct ProjectViewModelInQml {
  Q_GADGET
  QML_FOREIGN(gavrel::ProjectViewModel)
  QML_NAMED_ELEMENT(ProjectViewModel)
};

/// The interaction modes under their own names, which QML's enumerations cannot have.
class AppModeInQml : public QObject {
  Q_OBJECT
  QML_NAMED_ELEMENT(AppMode)
  QML_SINGLETON
  Q_PROPERTY(int normal READ normal CONSTANT)
  Q_PROPERTY(int addingTruss READ addingTruss CONSTANT)
  Q_PROPERTY(int addingBeam READ addingBeam CONSTANT)

 public:
  [[nodiscard]] int normal() const { return static_cast<int>(AppMode::normal); }
  [[nodiscard]] int addingTruss() const { return static_cast<int>(AppMode::addingTruss); }
  [[nodiscard]] int addingBeam() const { return static_cast<int>(AppMode::addingBeam); }
};

}  // namespace gavrel
