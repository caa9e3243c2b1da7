#include "PreviewContent/FilePanel.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMetaEnum>
#include <QPalette>
#include <QQuickItem>
#include <QQuickWindow>
#include <QWindow>

namespace {

/// The colours of a palette of Qt Quick, whose properties are named like the roles of a QPalette.
QPalette colorsOf(const QObject& quickPalette) {
  QPalette palette;
  const auto roles = QMetaEnum::fromType<QPalette::ColorRole>();
  const auto* const disabled = quickPalette.property("disabled").value<QObject*>();
  for (int i = 0; i < roles.keyCount(); ++i) {
    QByteArray name = roles.key(i);
    name[0] = static_cast<char>(QChar::toLower(static_cast<uint>(name[0])));
    const auto role = static_cast<QPalette::ColorRole>(roles.value(i));
    const QVariant color = quickPalette.property(name);
    if (color.isValid()) palette.setColor(role, color.value<QColor>());
    if (disabled == nullptr) continue;
    const QVariant faint = disabled->property(name);
    if (faint.isValid()) palette.setColor(QPalette::Disabled, role, faint.value<QColor>());
  }
  return palette;
}

QFileDialog::FileMode modeFor(FilePanel::Purpose purpose) {
  switch (purpose) {
    case FilePanel::OpenOne:
      return QFileDialog::ExistingFile;
    case FilePanel::OpenMany:
      return QFileDialog::ExistingFiles;
    case FilePanel::Save:
      break;
  }
  return QFileDialog::AnyFile;
}

}  // namespace

FilePanel::~FilePanel() {
  delete dialog_;
}

bool FilePanel::exists(const QUrl& file) {
  return QFileInfo::exists(file.toLocalFile());
}

void FilePanel::open(const QUrl& folder, const QString& name) {
  if (visible()) return;
  dialog_ = new QFileDialog(nullptr, title_);
  dialog_->setOption(QFileDialog::DontConfirmOverwrite);
  dialog_->setSupportedSchemes({QStringLiteral("file")});
  dialog_->setAcceptMode(purpose_ == Save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog_->setFileMode(modeFor(purpose_));
  dialog_->setNameFilters(nameFilters_);
  dialog_->setDefaultSuffix(defaultSuffix_);
  dialog_->setDirectoryUrl(QDir(folder.toLocalFile()).exists() ? folder : QUrl::fromLocalFile(QDir::homePath()));
  if (!name.isEmpty()) dialog_->selectFile(name);
  if (!acceptLabel_.isEmpty()) dialog_->setLabelText(QFileDialog::Accept, acceptLabel_);
  if (palette_ != nullptr) dialog_->setPalette(colorsOf(*palette_));
  connect(dialog_, &QFileDialog::finished, this, &FilePanel::finish);

  dialog_->setWindowModality(Qt::ApplicationModal);
  dialog_->winId();  // makes the window, so that it can be tied to the one that it belongs to
  dialog_->windowHandle()->setTransientParent(owner());
  dialog_->show();
  dialog_->activateWindow();
  emit visibleChanged();
}

QWindow* FilePanel::owner() const {
  const auto* const item = qobject_cast<QQuickItem*>(parent());
  return item != nullptr ? item->window() : nullptr;
}

void FilePanel::finish(int result) {
  const QList<QUrl> files = dialog_->selectedUrls();
  dialog_->deleteLater();
  dialog_.clear();
  if (owner() != nullptr) owner()->requestActivate();  // not every window manager gives it the keyboard again
  if (result == QDialog::Accepted && !files.isEmpty()) {
    emit accepted(files);
  } else {
    emit rejected();
  }
  emit visibleChanged();
}
