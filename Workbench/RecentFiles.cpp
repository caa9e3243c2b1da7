#include "Workbench/RecentFiles.h"

namespace gavrel {

RecentFiles::RecentFiles(ProjectViewModel& viewModel, const QString& settings, QObject* parent)
    : QObject(parent), paths_(settings) {
  connect(&viewModel, &ProjectViewModel::fileUsed, this, [this, &viewModel] { add(*viewModel.currentFileUrl); });
}

void RecentFiles::clear() {
  paths_.clear();
  emit changed();
}

void RecentFiles::add(const std::filesystem::path& file) {
  paths_.add(QString::fromStdString(std::filesystem::absolute(file).lexically_normal().string()));
  emit changed();
}

}  // namespace gavrel
