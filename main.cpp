#include <QtQml/qqmlextensionplugin.h>
#include <QApplication>
#include <QIcon>
#include <QQuickStyle>
#include <QQuickWindow>
#include <csignal>
#include <cstdio>
#include <string>

#include "GavrelApp.h"
#include "Managers/BundleInfo.h"
#include "Managers/LeftOvers.h"
#include "Options.h"
#include "Platform/Signals.h"
#include "Screenshot.h"

Q_IMPORT_QML_PLUGIN(Gavrel_PreviewContentPlugin)
Q_IMPORT_QML_PLUGIN(Gavrel_ViewportPlugin)
Q_IMPORT_QML_PLUGIN(Gavrel_ViewsPlugin)
Q_IMPORT_QML_PLUGIN(Gavrel_WorkbenchPlugin)

using namespace gavrel;

namespace {

/// Checked first, since Qt aborts the process without a display: this prints a line and gives an exit status instead.
bool hasDisplay() {
  const auto isSet = [](const char* variable) { return !qEnvironmentVariableIsEmpty(variable); };
  if (isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM")) return true;
  std::fputs("gavrel needs a display: neither DISPLAY nor WAYLAND_DISPLAY is set.\n", stderr);
  return false;
}

/// QApplication asks only windows of widgets before it quits; QGuiApplication asks all windows.
class Application : public QApplication {
 public:
  using QApplication::QApplication;

 protected:
  bool event(QEvent* event) override {
    // NOLINTNEXTLINE(bugprone-parent-virtual-call): what QApplication does with this event is what is not wanted.
    return event->type() == QEvent::Quit ? QGuiApplication::event(event) : QApplication::event(event);
  }
};

}  // namespace

int main(int argc, char** argv) {
  keepFilesWholeOnSignals();
  // Before the application object, which needs a display: help and usage errors do without.
  const std::string version = mainBundle().text("CFBundleShortVersionString").value_or("");
  auto asked = readOptions(argc, argv, version);
  if (const int* status = std::get_if<int>(&asked)) return *status;
  const Options& options = std::get<Options>(asked);

  if (!hasDisplay()) return 1;
  // Before anything reads the program's location, which this may change.
  if (!options.screenshot)
    if (const auto failure = settleInstallation(runningProgram()))
      std::fprintf(stderr, "gavrel: %s\n", failure->reason.c_str());

  // Draws in the main thread: Qt 6.4 destroys a 3D view while its drawing thread may still be using it.
  qputenv("QSG_RENDER_LOOP", "basic");
  // Qt keeps compiled QML in the user's cache; a file there that a kill or a full disk has cut off crashes each later
  // start.
  qputenv("QML_DISABLE_DISK_CACHE", "1");
  QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
  QQuickStyle::setStyle(QStringLiteral("Fusion"));
  Application application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("gavrel"));
  QApplication::setApplicationDisplayName(QStringLiteral("Gavrel"));
  QApplication::setApplicationVersion(QString::fromStdString(version));
  QApplication::setWindowIcon(QIcon(QStringLiteral(":/gavrel.svg")));
  QApplication::setDesktopFileName(QStringLiteral("gavrel"));

  if (options.screenshot) return writeScreenshot(options);
  // The window goes on when its standard output is closed.
  std::signal(SIGPIPE, SIG_IGN);
  GavrelApp app;
  if (!app.start(options.file, options.updateFailure)) return 1;
  return QApplication::exec();
}
