#pragma once

#include <QObject>
#include <QQmlContext>
#include <QQmlEngine>

#include "CapturedOutput.h"
#include "Drops.h"
#include "UpdateStates.h"

namespace gavrel {

/// Lets the tests import the program's QML modules and read what it prints ("standardOutput"),
/// bring an update manager into its states ("updates"), and drop files ("drops").
class Setup : public QObject {
  Q_OBJECT

 public slots:
  // The tests destroy 3D areas in a window that lives on. In Qt 6.4 another thread may be drawing one just then, and
  // writes into nodes that are gone.
  void applicationAvailable() { qputenv("QSG_RENDER_LOOP", "basic"); }

  void qmlEngineAvailable(QQmlEngine* engine) {
    engine->addImportPath("qrc:/qt/qml");
    engine->rootContext()->setContextProperty("standardOutput", &output_);
    engine->rootContext()->setContextProperty("updates", &updates_);
    engine->rootContext()->setContextProperty("drops", &drops_);
  }

 private:
  CapturedOutput output_;
  UpdateStates updates_;
  Drops drops_;
};

}  // namespace gavrel
