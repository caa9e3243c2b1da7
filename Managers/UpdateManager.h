#pragma once

#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QNetworkAccessManager>
#include <QObject>
#include <QSettings>
#include <QString>
#include <QTemporaryFile>
#include <QThreadPool>
#include <QUrl>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "Managers/BundleInfo.h"
#include "Managers/HttpTransfer.h"
#include "Managers/SignatureTransfer.h"
#include "Managers/UpdateState.h"
#include "Platform/Observable.h"

namespace gavrel {

/// Finds newer versions on the update server, downloads and installs them. `state` shows the progress and every
/// failure; it changes on the main thread only. Observers of `objectWillChange` are told before a change.
class UpdateManager : public QObject {
  Q_OBJECT
  Q_PROPERTY(gavrel::UpdateState state READ currentState NOTIFY stateChanged)
  Q_PROPERTY(QString currentVersion READ version CONSTANT)
  Q_PROPERTY(QString bundleName READ bundleName CONSTANT)
  Q_PROPERTY(bool checksAtStart READ checksAtStart WRITE setChecksAtStart NOTIFY checksAtStartChanged)

 public:
  struct Setup {
    QString versionCheckUrl;  ///< address of the manifest
    QString settings;         ///< file with the user's settings
    BundleInfo bundle = {};   ///< of the running program
    /// Ed25519, 32 bytes each. The owner of any of them may sign updates; without keys, updates need no signature.
    std::vector<QByteArray> publicKeys = {};
    qint64 largestArchive = qint64{1} << 30;                        ///< bytes
    std::chrono::milliseconds silence = std::chrono::minutes(1);    ///< after which a transfer has failed
    std::chrono::milliseconds deadline = std::chrono::seconds(30);  ///< for the manifest and for each signature
    std::chrono::milliseconds slowness = std::chrono::minutes(1);   ///< how long the archive may come too slowly
    std::function<QDate()> today = [] { return QDateTime::currentDateTimeUtc().date(); };
    std::function<QString()> whyNotNow = {};  ///< asked before an installation; a text that it returns forbids it
    std::function<void()> terminate = {};     ///< ends the program so that it can be replaced
  };

  explicit UpdateManager(Setup setup, QObject* parent = nullptr);
  ~UpdateManager() override;

  Observable objectWillChange;
  Published<UpdateState> state;
  Published<QString> currentVersion;  ///< empty if the bundle does not state it
  Published<qint64> currentBuild;     ///< 0 if the bundle does not state it
  const QString versionCheckUrl;
  const QString appIdentifier = QStringLiteral("brantel");  ///< key in the manifest, part of file names
  std::unique_ptr<HttpTransfer> downloadTask;
  std::optional<QUrl> updateDirectory;            ///< once an archive is stored
  std::optional<VersionInfo> pendingVersionInfo;  ///< once a download has begun

  /// Asks the server for its manifest. An explicit check shows that it runs and how it failed; a silent one shows only
  /// that there is a newer version. Without a newer version both end in `idle`. If updates are signed, the manifest is
  /// accepted only with its signature and its date: one older than another seen before is rejected, and an old one does
  /// not prove that there is no newer version.
  Q_INVOKABLE void checkForUpdates(bool isExplicitCheck);

  /// Whether the user wants the silent check at each start. True until the user decides otherwise.
  [[nodiscard]] bool checksAtStart() const;
  void setChecksAtStart(bool wanted);

  /// Returns to `idle`.
  Q_INVOKABLE void skipUpdate();

  /// Stops all checks and the download, and returns to `idle`.
  Q_INVOKABLE void cancel();

  /// Downloads the archive and, if updates are signed, verifies its signature.
  Q_INVOKABLE void downloadUpdate(const VersionInfo& info);

  /// Unpacks the archive in a background thread, starts the script that replaces the bundle and ends the program.
  Q_INVOKABLE void installUpdate(const VersionInfo& info, const QUrl& archive);

  /// Shows the failure of an installation that happened after the program had ended.
  Q_INVOKABLE void installationFailed(const QString& reason);

 signals:
  void stateChanged();
  void checksAtStartChanged();

 private:
  void loadCurrentVersion();
  void post(UpdateState next);
  void set(const UpdateState& next);
  void handleManifest(const QByteArray& json, bool isExplicitCheck);
  void handleVersionInfo(const VersionInfo& info);
  void failCheck(const UpdateError& error, bool isExplicitCheck);
  [[nodiscard]] bool isNewerThanRunning(const VersionInfo& info) const;
  [[nodiscard]] std::optional<QDate> newestManifest();

  void stopDownload();
  void didWriteData(qint64 totalBytesWritten, qint64 totalBytesExpected);
  void didFinishDownloadingTo(const QString& location);
  void fetchSignature(const QString& location);
  void storeArchive(const QString& location);
  void didCompleteWithError(const QString& reason);

  [[nodiscard]] UpdateState currentState() const { return *state; }
  [[nodiscard]] QString version() const { return *currentVersion; }
  [[nodiscard]] QString bundleName() const;

  const Setup setup_;
  QSettings settings_;
  QNetworkAccessManager session_;
  std::unique_ptr<QObject> checks_;  // parent of those that run
  std::unique_ptr<QTemporaryFile> download_;
  std::unique_ptr<SignatureTransfer> signatureTask_;
  QByteArray signature_;
  QThreadPool worker_;  // declared last, so that it has ended before anything else is destroyed
};

}  // namespace gavrel
