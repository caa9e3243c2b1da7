#include "PreviewContent/RecentFiles.h"

#include <QFileInfo>
#include <algorithm>

namespace {

constexpr qsizetype most = 10;
const QString key = QStringLiteral("recentFiles");

}  // namespace

RecentFiles::RecentFiles(ProjectViewModel& viewModel, const QString& settings, QObject* parent)
    : QObject(parent), settings_(settings, QSettings::IniFormat) {
  connect(&viewModel, &ProjectViewModel::fileUsed, this, [this, &viewModel] { add(*viewModel.currentFileUrl); });
}

QStringList RecentFiles::paths() const {
  QStringList paths = settings_.value(key).toStringList();
  paths.removeIf([](const QString& path) { return !QFileInfo::exists(path); });
  return paths;
}

void RecentFiles::clear() {
  settings_.remove(key);
  emit changed();
}

void RecentFiles::add(const std::filesystem::path& file) {
  const QString path = QString::fromStdString(std::filesystem::absolute(file).lexically_normal().string());
  settings_.sync();  // what other copies have added
  QStringList all = settings_.value(key).toStringList();
  all.removeAll(path);
  all.prepend(path);
  settings_.setValue(key, all.first(std::min(all.size(), most)));
  settings_.sync();
  emit changed();
}
