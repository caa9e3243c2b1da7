#include "Workbench/FilePanel.h"

#include <QDir>
#include <QFileDialog>
#include <QMetaEnum>
#include <QPalette>
#include <QQuickItem>
#include <QQuickWindow>
#include <QWindow>

namespace gavrel {

namespace {

/// The colours of a palette of Qt Quick, whose properties are named like the roles of a QPalette.
QPalette convertPalette(const QObject& quickPalette) {
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

QFileDialog::FileMode modeFor(FileRequest::Purpose purpose) {
  switch (purpose) {
    case FileRequest::OpenOne:
      return QFileDialog::ExistingFile;
    case FileRequest::OpenMany:
      return QFileDialog::ExistingFiles;
    case FileRequest::Save:
      break;
  }
  return QFileDialog::AnyFile;
}

}  // namespace

FilePanel::~FilePanel() {
  delete dialog_;
}

void FilePanel::open(const FileRequest& request) {
  if (visible()) return;
  dialog_ = new QFileDialog(nullptr, request.title);
  dialog_->setOption(QFileDialog::DontConfirmOverwrite);
  dialog_->setSupportedSchemes({QStringLiteral("file")});
  dialog_->setAcceptMode(request.purpose == FileRequest::Save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog_->setFileMode(modeFor(request.purpose));
  dialog_->setNameFilters(request.nameFilters);
  dialog_->setDefaultSuffix(request.suffix);
  const bool isThere = QDir(request.folder.toLocalFile()).exists();
  dialog_->setDirectoryUrl(isThere ? request.folder : QUrl::fromLocalFile(QDir::homePath()));
  if (!request.name.isEmpty()) dialog_->selectFile(request.name);
  if (!request.acceptLabel.isEmpty()) dialog_->setLabelText(QFileDialog::Accept, request.acceptLabel);
  if (palette_ != nullptr) dialog_->setPalette(convertPalette(*palette_));
  connect(dialog_, &QFileDialog::finished, this, &FilePanel::finish);

  dialog_->setWindowModality(Qt::ApplicationModal);
  dialog_->winId();  // creates the window, so that its owner can be set
  dialog_->windowHandle()->setTransientParent(owner());
  dialog_->show();
  dialog_->activateWindow();
}

QWindow* FilePanel::owner() const {
  const auto* const item = qobject_cast<QQuickItem*>(parent());
  return item != nullptr ? item->window() : nullptr;
}

void FilePanel::finish(int result) {
  const QList<QUrl> files = dialog_->selectedUrls();
  dialog_->deleteLater();
  dialog_.clear();
  if (owner() != nullptr) owner()->requestActivate();  // some window managers do not return the keyboard focus
  if (result == QDialog::Accepted && !files.isEmpty()) {
    emit accepted(files);
  } else {
    emit rejected();
  }
}

}  // namespace gavrel
