#include "GavrelApp.h"

#include <QCoreApplication>
#include <QStandardPaths>
#include <QUrl>
#include <QVariantMap>
#include <string_view>
#include <vector>

#include "Platform/Fatal.h"

namespace gavrel {

BundleInfo mainBundle() {
  return BundleInfo::findAround(
      runningProgram(),
      {{"CFBundleName", "Gavrel"}, {"CFBundleShortVersionString", GAVREL_VERSION}, {"CFBundleVersion", GAVREL_BUILD}});
}

namespace {

std::filesystem::path recoveryFolder() {
  return (QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + "/recovery").toStdString();
}

QString settingsFile() {
  return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) + "/gavrel.ini";
}

std::vector<QByteArray> compiledInKeys() {
  std::vector<QByteArray> keys;
  for (const char* key : {GAVREL_UPDATE_PUBLIC_KEY, GAVREL_UPDATE_SECOND_PUBLIC_KEY})
    if (*key != '\0') keys.push_back(QByteArray::fromBase64(key));
  return keys;
}

}  // namespace

GavrelApp::GavrelApp(QObject* parent)
    : QObject(parent),
      updateManager({.versionCheckUrl = QStringLiteral(GAVREL_UPDATE_SERVER "/versions.json"),
                     .settings = settingsFile(),
                     .bundle = mainBundle(),
                     .publicKeys = compiledInKeys(),
                     .whyNotNow = [this] { return whyNotToBeEnded(); },
                     .terminate = [this] { restart(); }}),
      recovery(projectViewModel, recoveryFolder()),
      recentFiles(projectViewModel, settingsFile()) {
  engine_.addImportPath(QStringLiteral("qrc:/qt/qml"));
  onFatal([this](std::string_view line) { recovery.keepReason(line); });
}

GavrelApp::~GavrelApp() {
  onFatal({});
}

bool GavrelApp::start(const std::optional<std::filesystem::path>& file, const std::string& updateFailure) {
  engine_.setInitialProperties({{"projectViewModel", QVariant::fromValue(&projectViewModel)},
                                {"updateManager", QVariant::fromValue(&updateManager)},
                                {"recovery", QVariant::fromValue(&recovery)},
                                {"recentFiles", QVariant::fromValue(&recentFiles)},
                                {"updateFailure", QString::fromStdString(updateFailure)}});
  engine_.load(QUrl(QStringLiteral("qrc:/qt/qml/Gavrel/GavrelApp.qml")));
  if (engine_.rootObjects().isEmpty()) return false;
  if (file) projectViewModel.openProject(file);
  return true;
}

QString GavrelApp::whyNotToBeEnded() {
  recovery.flush();
  if (!projectViewModel.hasUnsavedChanges()) return {};
  return recovery.failure();
}

void GavrelApp::restart() {
  QObject& window = *engine_.rootObjects().constFirst();
  if (const QString reason = whyNotToBeEnded(); !reason.isEmpty()) {
    updateManager.skipUpdate();
    window.setProperty("staysBecause", reason);
    return;
  }
  recovery.keepReason(tr("It was ended to install an update.").toStdString());
  window.setProperty("asksBeforeClosing", false);
  QCoreApplication::quit();
}

}  // namespace gavrel
