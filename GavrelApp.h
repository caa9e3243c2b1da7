#pragma once

#include <QObject>
#include <QQmlApplicationEngine>
#include <filesystem>
#include <optional>
#include <string>

#include "Managers/BundleInfo.h"
#include "Managers/UpdateManager.h"
#include "PreviewContent/ProjectViewModel.h"
#include "Workbench/RecentFiles.h"
#include "Workbench/Recovery.h"

namespace gavrel {

/// The bundle that the program runs from; without one, the name and version that it was built with.
[[nodiscard]] BundleInfo mainBundle();

/// The application: owns the objects that live as long as the process, and its one window.
class GavrelApp : public QObject {
  Q_OBJECT

 public:
  explicit GavrelApp(QObject* parent = nullptr);
  ~GavrelApp() override;

  /// Opens the window, with the project in `file` if one is given, and checks for updates silently unless there is an
  /// `updateFailure` to show. False if the window could not be created.
  [[nodiscard]] bool start(const std::optional<std::filesystem::path>& file, const std::string& updateFailure);

  ProjectViewModel projectViewModel;
  UpdateManager updateManager;
  Recovery recovery;
  RecentFiles recentFiles;

 private:
  /// Why unsaved changes would be lost if the program ended now; empty if the next start would offer them.
  [[nodiscard]] QString whyNotToBeEnded();
  /// Ends the program without a question. If something would be lost, it goes on and says why.
  void restart();

  QQmlApplicationEngine engine_;
};

}  // namespace gavrel
