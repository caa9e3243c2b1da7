#pragma once

#include <QObject>
#include <QQmlApplicationEngine>
#include <filesystem>
#include <optional>

#include "PreviewContent/ProjectViewModel.h"

/// The application: owns the objects that live as long as the process, and its one window.
class GavrelApp : public QObject {
  Q_OBJECT

 public:
  explicit GavrelApp(QObject* parent = nullptr);

  /// Opens the window, with the project in `file` if one is given. False if the window could not be made.
  [[nodiscard]] bool start(const std::optional<std::filesystem::path>& file);

  ProjectViewModel projectViewModel;

 private:
  QQmlApplicationEngine engine_;
};
