#pragma once

#include <QSettings>
#include <QStringList>

namespace gavrel {

/// The paths of the project files that were used last, the latest first, in the user's settings.
class RecentPaths {
 public:
  /// `settings`: the file to keep them in.
  explicit RecentPaths(const QString& settings) : settings_(settings, QSettings::IniFormat) {}

  /// The paths at which there still is a file.
  [[nodiscard]] QStringList all() const;
  void add(const QString& path);
  void clear();

 private:
  QSettings settings_;
};

}  // namespace gavrel
