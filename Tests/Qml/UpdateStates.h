#pragma once

#include <QObject>
#include <QString>
#include <QTemporaryDir>
#include <QUrl>

#include "Managers/UpdateManager.h"

namespace gavrel {

/// An update manager of version 1.2, and the way into each of its states.
class UpdateStates : public QObject {
  Q_OBJECT
  Q_PROPERTY(gavrel::UpdateManager* manager READ manager CONSTANT)
  Q_PROPERTY(gavrel::UpdateManager* unnamed READ unnamed CONSTANT)

 public:
  using QObject::QObject;

  [[nodiscard]] UpdateManager* manager() { return &manager_; }
  [[nodiscard]] UpdateManager* unnamed() { return &unnamed_; }

  Q_INVOKABLE void show(const QString& name, double progress = 0, const QString& changelog = "") {
    using Case = UpdateState::Case;
    static const QMap<QString, Case> cases{{"idle", Case::idle},
                                           {"checking", Case::checking},
                                           {"updateAvailable", Case::updateAvailable},
                                           {"downloading", Case::downloading},
                                           {"downloaded", Case::downloaded},
                                           {"installing", Case::installing},
                                           {"completed", Case::completed},
                                           {"error", Case::error}};
    UpdateState state{
        .kind = cases[name], .info = {"2.0.1", 9, "not an address", changelog, false, {}}, .progress = progress};
    if (state.kind == Case::error) state = UpdateState::error(UpdateError::Case::networkError, changelog);
    for (UpdateManager* each : {&manager_, &unnamed_}) {
      each->state.edit() = state;
      emit each->stateChanged();
    }
  }

 private:
  QTemporaryDir files_;
  UpdateManager manager_{{.versionCheckUrl = {},
                          .settings = files_.filePath("gavrel.ini"),
                          .bundle = {{}, {}, {{"CFBundleName", "Gavrel"}, {"CFBundleShortVersionString", "1.2"}}}}};
  UpdateManager unnamed_{{.versionCheckUrl = {}, .settings = files_.filePath("other.ini")}};
};

}  // namespace gavrel
