#include "Managers/UpdateManager.h"

#include <QBuffer>
#include <charconv>
#include <filesystem>
#include <utility>

#include "Managers/Installation.h"
#include "Managers/UpdateSignature.h"
#include "Platform/PrivateFolder.h"

namespace fs = std::filesystem;

namespace {

constexpr qint64 largestManifest = qint64{1} << 20;  // bytes

using State = UpdateState::Case;
using Error = UpdateError::Case;

constexpr int httpOk = 200;

QString shown(const fs::path& path) {
  return QString::fromStdString(path.string());
}

}  // namespace

UpdateManager::UpdateManager(Setup setup, QObject* parent)
    : QObject(parent),
      state(objectWillChange),
      currentVersion(objectWillChange),
      currentBuild(objectWillChange),
      versionCheckUrl(setup.versionCheckUrl),
      setup_(std::move(setup)) {
  loadCurrentVersion();
}

UpdateManager::~UpdateManager() = default;

void UpdateManager::loadCurrentVersion() {
  if (const auto version = setup_.bundle.text("CFBundleShortVersionString"))
    currentVersion.edit() = QString::fromStdString(*version);
  const std::string build = setup_.bundle.text("CFBundleVersion").value_or("");
  const char* const end = build.data() + build.size();
  qint64 number = 0;
  const auto [rest, error] = std::from_chars(build.data(), end, number);
  if (error == std::errc() && rest == end) currentBuild.edit() = number;
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

  auto* manifest = new QBuffer;
  manifest->open(QIODevice::WriteOnly);
  auto* request = new HttpTransfer(session_, *url, {largestManifest, setup_.silence}, *manifest);
  request->setParent(this);
  manifest->setParent(request);
  connect(
      request, &HttpTransfer::finished, this,
      [this, request, manifest, isExplicitCheck] {
        request->deleteLater();
        if (!request->failure()) return handleManifest(manifest->data(), isExplicitCheck);
        set(isExplicitCheck ? UpdateState::error(Error::networkError, *request->failure()) : UpdateState());
      },
      Qt::QueuedConnection);
}

void UpdateManager::handleManifest(const QByteArray& json, bool isExplicitCheck) {
  const auto manifest = decodeManifest(json);
  if (manifest && manifest->contains(appIdentifier)) return handleVersionInfo(manifest->value(appIdentifier));
  set(isExplicitCheck ? UpdateState::error(Error::invalidResponse) : UpdateState());
}

void UpdateManager::handleVersionInfo(const VersionInfo& info) {
  const bool newerVersion = isNewerVersion(info.version, *currentVersion);
  const bool newerBuild = info.version == *currentVersion && *currentBuild < info.build;
  set(newerVersion || newerBuild ? UpdateState{.kind = State::updateAvailable, .info = info} : UpdateState());
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

  downloadTask.reset();
  signatureTask_.reset();
  signature_.clear();
  const auto folder = privateTemporaryFolder();
  if (!folder) return didCompleteWithError(QString::fromStdString(folder.failure().reason));
  download_ = std::make_unique<QTemporaryFile>(shown(*folder / "download-XXXXXX"));
  if (!download_->open()) return didCompleteWithError(download_->errorString());
  downloadTask =
      std::make_unique<HttpTransfer>(session_, *url, TransferLimits{setup_.largestArchive, setup_.silence}, *download_);
  connect(downloadTask.get(), &HttpTransfer::progressed, this, &UpdateManager::didWriteData);
  connect(downloadTask.get(), &HttpTransfer::finished, this, [this] {
    if (const auto& failure = downloadTask->failure()) return didCompleteWithError(*failure);
    didFinishDownloadingTo(download_->fileName());
  });
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
  const auto url = secureUrl(pendingVersionInfo->downloadUrl + ".sig");
  if (!url) return didCompleteWithError(wrongSignature());
  auto* signature = new QBuffer(&signature_);
  signature->open(QIODevice::WriteOnly);
  signatureTask_ =
      std::make_unique<HttpTransfer>(session_, *url, TransferLimits{signatureSize, setup_.silence}, *signature);
  signature->setParent(signatureTask_.get());
  connect(signatureTask_.get(), &HttpTransfer::finished, this, [this, location] {
    if (const auto& failure = signatureTask_->failure())
      return didCompleteWithError(tr("The update's signature: %1").arg(*failure));
    if (signatureTask_->status() != httpOk)
      return didCompleteWithError(tr("The update's signature: the server answered %1.").arg(signatureTask_->status()));
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
  if (error) return didCompleteWithError(shown(archive) + ": " + QString::fromStdString(error.message()));
  updateDirectory = QUrl::fromLocalFile(shown(folder));
  post(pendingVersionInfo ? UpdateState{.kind = State::downloaded,
                                        .info = *pendingVersionInfo,
                                        .archive = QUrl::fromLocalFile(shown(archive))}
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
