#include "GavrelApp.h"

#include <QCoreApplication>
#include <QUrl>
#include <QVariantMap>

BundleInfo mainBundle() {
  return BundleInfo::around(
      runningProgram(),
      {{"CFBundleName", "Gavrel"}, {"CFBundleShortVersionString", GAVREL_VERSION}, {"CFBundleVersion", GAVREL_BUILD}});
}

GavrelApp::GavrelApp(QObject* parent)
    : QObject(parent),
      updateManager({.versionCheckUrl = QStringLiteral(GAVREL_UPDATE_SERVER "/versions.json"),
                     .bundle = mainBundle(),
                     .publicKey = QByteArray::fromBase64(GAVREL_UPDATE_PUBLIC_KEY),
                     .terminate = &QCoreApplication::quit}) {
  engine_.addImportPath(QStringLiteral("qrc:/qt/qml"));
}

bool GavrelApp::start(const std::optional<std::filesystem::path>& file, const std::string& updateFailure) {
  engine_.setInitialProperties({{"projectViewModel", QVariant::fromValue(&projectViewModel)},
                                {"updateManager", QVariant::fromValue(&updateManager)},
                                {"updateFailure", QString::fromStdString(updateFailure)}});
  engine_.load(QUrl(QStringLiteral("qrc:/qt/qml/Gavrel/GavrelApp.qml")));
  if (engine_.rootObjects().isEmpty()) return false;
  if (file) projectViewModel.loadProject(file);
  return true;
}
