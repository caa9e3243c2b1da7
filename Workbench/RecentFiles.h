#pragma once

#include <qqml.h>
#include <QObject>
#include <QStringList>
#include <QUrl>

#include "PreviewContent/ProjectViewModel.h"
#include "Workbench/RecentPaths.h"

namespace gavrel {

/// The project files that were opened or saved last, the latest first, kept in the user's settings. Files that are no
/// longer there are left out.
class RecentFiles : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The application makes the one that there is.")
  Q_PROPERTY(QStringList paths READ paths NOTIFY changed)

 public:
  /// Watches the view model, which outlives this. `settings`: the file to keep them in.
  RecentFiles(ProjectViewModel& viewModel, const QString& settings, QObject* parent = nullptr);

  [[nodiscard]] QStringList paths() const { return paths_.all(); }
  Q_INVOKABLE void clear();

  /// The address of a path, whatever characters it has.
  [[nodiscard]] Q_INVOKABLE static QUrl url(const QString& path) { return QUrl::fromLocalFile(path); }

 signals:
  void changed();

 private:
  void add(const std::filesystem::path& file);

  RecentPaths paths_;
};

}  // namespace gavrel
