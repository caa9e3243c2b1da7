#include "Workbench/RecentPaths.h"

#include <QFileInfo>
#include <algorithm>

namespace gavrel {

namespace {

constexpr qsizetype maximumCount = 10;
const QString key = QStringLiteral("recentFiles");

}  // namespace

QStringList RecentPaths::all() const {
  QStringList paths = settings_.value(key).toStringList();
  paths.removeIf([](const QString& path) { return !QFileInfo::exists(path); });
  return paths;
}

void RecentPaths::add(const QString& path) {
  settings_.sync();  // takes in what other running copies have added
  QStringList paths = settings_.value(key).toStringList();
  paths.removeAll(path);
  paths.prepend(path);
  settings_.setValue(key, paths.first(std::min(paths.size(), maximumCount)));
  settings_.sync();
}

void RecentPaths::clear() {
  settings_.remove(key);
}

}  // namespace gavrel
