#include "Managers/UpdateManager.h"

#include <filesystem>
#include <utility>

#include "Managers/BundleVersion.h"
#include "Managers/Installation.h"
#include "Managers/ManifestDate.h"
#include "Managers/ManifestTransfer.h"
#include "Managers/Paths.h"
#include "Managers/UpdateSignature.h"
#include "Platform/PrivateFolder.h"

namespace gavrel {

namespace fs = std::filesystem;

namespace {

constexpr qint64 largestManifest = qint64{1} << 20;  // bytes

const QString newestManifestKey = QStringLiteral("newestListOfVersions");
const QString checksAtStartKey = QStringLiteral("checksForUpdatesAtStart");

using State = UpdateState::Case;
using Error = UpdateError::Case;

constexpr int httpOk = 200;

}  // namespace

UpdateManager::UpdateManager(Setup setup, QObject* parent)
    : QObject(parent),
      state(objectWillChange),
      currentVersion(objectWillChange),
      currentBuild(objectWillChange),
      versionCheckUrl(setup.versionCheckUrl),
      setup_(std::move(setup)),
      settings_(setup_.settings, QSettings::IniFormat),
      checks_(std::make_unique<QObject>()) {
  loadCurrentVersion();
}

UpdateManager::~UpdateManager() = default;

void UpdateManager::loadCurrentVersion() {
  const auto [version, build] = readVersion(setup_.bundle);
  currentVersion.edit() = version;
  currentBuild.edit() = build;
}

QString UpdateManager::bundleName() const {
  return QString::fromStdString(setup_.bundle.text("CFBundleName").value_or(""));
}

void UpdateManager::set(const UpdateState& next) {
  state.edit() = next;
  emit stateChanged();
}

void UpdateManager::post(UpdateState next) {
  QMetaObject::invokeMethod(
      this, [this, next = std::move(next)] { set(next); }, Qt::QueuedConnection);
}

void UpdateManager::skipUpdate() {
  post({});
}

void UpdateManager::checkForUpdates(bool isExplicitCheck) {
  if (isExplicitCheck) post({.kind = State::checking});
  const auto url = secureUrl(versionCheckUrl);
  if (!url) return post(isExplicitCheck ? UpdateState::error(Error::invalidUrl) : UpdateState());

  auto* check = new ManifestTransfer(session_, *url, setup_.publicKeys,
                                     {.bytes = largestManifest, .silence = setup_.silence, .whole = setup_.deadline});
  check->setParent(checks_.get());
  // Posted to the check itself, so that a cancelled check reports nothing.
  connect(
      check, &ManifestTransfer::finished, check,
      [this, check, isExplicitCheck] {
        check->deleteLater();
        if (!check->failure()) return handleManifest(check->json(), isExplicitCheck);
        failCheck(*check->failure(), isExplicitCheck);
      },
      Qt::QueuedConnection);
}

void UpdateManager::cancel() {
  checks_ = std::make_unique<QObject>();
  stopDownload();
  post({});
}

void UpdateManager::failCheck(const UpdateError& error, bool isExplicitCheck) {
  set(isExplicitCheck ? UpdateState{.kind = State::error, .failure = error} : UpdateState());
}

void UpdateManager::handleManifest(const QByteArray& json, bool isExplicitCheck) {
  const auto manifest = decodeManifest(json);
  if (!manifest || !manifest->contains(appIdentifier)) return failCheck({Error::invalidResponse}, isExplicitCheck);
  const VersionInfo info = manifest->value(appIdentifier);
  if (setup_.publicKeys.empty()) return handleVersionInfo(info);

  const auto date = manifestDate(json, appIdentifier);
  if (!date) return failCheck({Error::invalidResponse}, isExplicitCheck);
  const auto newest = newestManifest();
  if (const auto reason = whyOutdated(*date, newest)) return failCheck({Error::checkFailed, *reason}, isExplicitCheck);
  const QDate today = setup_.today();
  // A date in the future, once remembered, would make all correct ones look outdated.
  if (newest != date && isPossible(*date, today)) settings_.setValue(newestManifestKey, date->toString(Qt::ISODate));
  const auto reason = whyNoProof(*date, today);
  if (reason && !isNewerThanRunning(info)) return failCheck({Error::checkFailed, *reason}, isExplicitCheck);
  handleVersionInfo(info);
}

void UpdateManager::handleVersionInfo(const VersionInfo& info) {
  set(isNewerThanRunning(info) ? UpdateState{.kind = State::updateAvailable, .info = info} : UpdateState());
}

bool UpdateManager::isNewerThanRunning(const VersionInfo& info) const {
  return isNewer({info.version, info.build}, {*currentVersion, *currentBuild});
}

std::optional<QDate> UpdateManager::newestManifest() {
  settings_.sync();  // what other copies have seen
  const QDate date = QDate::fromString(settings_.value(newestManifestKey).toString(), Qt::ISODate);
  return date.isValid() ? std::optional(date) : std::nullopt;
}

bool UpdateManager::checksAtStart() const {
  return settings_.value(checksAtStartKey, true).toBool();
}

void UpdateManager::setChecksAtStart(bool wanted) {
  settings_.setValue(checksAtStartKey, wanted);
  settings_.sync();
  emit checksAtStartChanged();
}

void UpdateManager::downloadUpdate(const VersionInfo& info) {
  const auto url = secureUrl(info.downloadUrl);
  if (!url) return post(UpdateState::error(Error::invalidUrl));
  QMetaObject::invokeMethod(
      this,
      [this, info] {
        pendingVersionInfo = info;
        set({.kind = State::downloading});
      },
      Qt::QueuedConnection);

  stopDownload();
  const auto folder = privateTemporaryFolder();
  if (!folder) return didCompleteWithError(QString::fromStdString(folder.failure().reason));
  download_ = std::make_unique<QTemporaryFile>(toText(*folder / "download-XXXXXX"));
  if (!download_->open()) return didCompleteWithError(download_->errorString());
  downloadTask = std::make_unique<HttpTransfer>(
      session_, *url,
      TransferLimits{.bytes = setup_.largestArchive, .silence = setup_.silence, .period = setup_.slowness}, *download_);
  connect(downloadTask.get(), &HttpTransfer::progressed, this, &UpdateManager::didWriteData);
  connect(downloadTask.get(), &HttpTransfer::finished, this, [this] {
    if (const auto& failure = downloadTask->failure()) return didCompleteWithError(*failure);
    didFinishDownloadingTo(download_->fileName());
  });
}

void UpdateManager::stopDownload() {
  downloadTask.reset();
  signatureTask_.reset();
  signature_.clear();
  download_.reset();
}

void UpdateManager::didWriteData(qint64 totalBytesWritten, qint64 totalBytesExpected) {
  if (totalBytesExpected < 1) return;
  post({.kind = State::downloading,
        .progress = static_cast<double>(totalBytesWritten) / static_cast<double>(totalBytesExpected)});
}

void UpdateManager::didFinishDownloadingTo(const QString& location) {
  if (state->kind != State::downloading || downloadTask->status() != httpOk)
    return post(UpdateState::error(Error::invalidResponse));
  if (!download_->flush()) return didCompleteWithError(download_->errorString());
  if (setup_.publicKeys.empty()) return storeArchive(location);
  fetchSignature(location);
}

void UpdateManager::fetchSignature(const QString& location) {
  signatureTask_ = std::make_unique<SignatureTransfer>(
      session_, pendingVersionInfo->downloadUrl,
      TransferLimits{.bytes = signatureSize, .silence = setup_.silence, .whole = setup_.deadline});
  connect(signatureTask_.get(), &SignatureTransfer::finished, this, [this, location] {
    if (state->kind != State::downloading) return post(UpdateState::error(Error::invalidResponse));
    if (const auto& failure = signatureTask_->failure())
      return didCompleteWithError(tr("The update's signature: %1").arg(*failure));
    signature_ = signatureTask_->signature();
    if (!isFileSigned(location, signature_, setup_.publicKeys)) return didCompleteWithError(wrongSignature());
    storeArchive(location);
  });
}

void UpdateManager::storeArchive(const QString& location) {
  const fs::path folder = fs::path(location.toStdString()).parent_path() / (appIdentifier + "Update").toStdString();
  const fs::path archive = folder / (appIdentifier + "-Update.zip").toStdString();
  std::error_code error;
  fs::create_directories(folder, error);
  fs::remove(archive, error);
  if (!error) fs::rename(location.toStdString(), archive, error);
  if (error) return didCompleteWithError(toText(archive) + ": " + QString::fromStdString(error.message()));
  updateDirectory = QUrl::fromLocalFile(toText(folder));
  post(pendingVersionInfo ? UpdateState{.kind = State::downloaded,
                                        .info = *pendingVersionInfo,
                                        .archive = QUrl::fromLocalFile(toText(archive))}
                          : UpdateState());
}

void UpdateManager::didCompleteWithError(const QString& reason) {
  post(UpdateState::error(Error::downloadFailed, reason));
}

void UpdateManager::installUpdate(const VersionInfo&, const QUrl& archive) {
  if (const QString reason = setup_.whyNotNow ? setup_.whyNotNow() : QString(); !reason.isEmpty())
    return installationFailed(tr("Save your changes first, they would be lost: %1").arg(reason));
  post({.kind = State::installing});
  const Installation installation{archive.toLocalFile(), setup_.bundle, setup_.publicKeys, signature_,
                                  pendingVersionInfo.value_or(VersionInfo())};
  worker_.start([this, installation] {
    if (const auto error = startInstaller(installation)) return post({.kind = State::error, .failure = *error});
    QMetaObject::invokeMethod(this, setup_.terminate, Qt::QueuedConnection);
  });
}

void UpdateManager::installationFailed(const QString& reason) {
  post(UpdateState::error(Error::installationFailed, reason));
}

}  // namespace gavrel
