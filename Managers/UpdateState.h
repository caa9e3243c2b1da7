#pragma once

#include <QObject>
#include <QString>
#include <QUrl>
#include <optional>
#include <utility>

#include "Managers/VersionInfo.h"

namespace gavrel {

/// Why an update failed.
struct UpdateError {
  enum class Case {
    networkError,
    checkFailed,  ///< the manifest cannot be trusted
    downloadFailed,
    installationFailed,
    invalidUrl,
    invalidResponse,
    noUpdateAvailable,
    invalidVersionFormat
  };

  Case kind;
  QString reason = {};  ///< of the first four cases

  [[nodiscard]] QString errorDescription() const;

  friend bool operator==(const UpdateError&, const UpdateError&) = default;
};

/// The progress of an update.
struct UpdateState {
  Q_GADGET
  Q_PROPERTY(QString name READ name)
  Q_PROPERTY(gavrel::VersionInfo info MEMBER info)
  Q_PROPERTY(double progress MEMBER progress)
  Q_PROPERTY(QUrl archive MEMBER archive)
  Q_PROPERTY(QString errorDescription READ errorDescription)

 public:
  enum class Case { idle, checking, updateAvailable, downloading, downloaded, installing, completed, error };
  Q_ENUM(Case)

  Case kind = Case::idle;
  VersionInfo info = {};                    ///< of `updateAvailable` and `downloaded`
  double progress = 0;                      ///< of `downloading`: 0 to 1
  QUrl archive = {};                        ///< of `downloaded`: the file
  std::optional<UpdateError> failure = {};  ///< of `error`

  [[nodiscard]] static UpdateState error(UpdateError::Case kind, QString reason = {}) {
    return {.kind = Case::error, .failure = UpdateError{kind, std::move(reason)}};
  }

  [[nodiscard]] QString name() const;  ///< of the case
  [[nodiscard]] QString errorDescription() const { return failure ? failure->errorDescription() : QString(); }

  friend bool operator==(const UpdateState&, const UpdateState&) = default;
};

}  // namespace gavrel
