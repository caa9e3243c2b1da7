#include "GavrelApp.h"

#include <QUrl>
#include <QVariantMap>

GavrelApp::GavrelApp(QObject* parent) : QObject(parent) {
  engine_.addImportPath(QStringLiteral("qrc:/qt/qml"));
}

bool GavrelApp::start(const std::optional<std::filesystem::path>& file) {
  engine_.setInitialProperties({{"projectViewModel", QVariant::fromValue(&projectViewModel)}});
  engine_.load(QUrl(QStringLiteral("qrc:/qt/qml/Gavrel/GavrelApp.qml")));
  if (engine_.rootObjects().isEmpty()) return false;
  if (file) projectViewModel.loadProject(file);
  return true;
}
