#pragma once

#include <qqml.h>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QUrl>

#include "Workbench/FileRequest.h"

class QFileDialog;
class QWindow;

namespace gavrel {

/// The panel in which a user chooses files: the desktop's own where it has one, Qt's otherwise. It never asks whether
/// an existing file may be replaced, since some desktops ask before the suffix is added and some not at all: the
/// panel's owner asks. While it is open, the program's windows take no input.
class FilePanel : public QObject {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(QObject* palette MEMBER palette_)

 public:
  using QObject::QObject;
  FilePanel(const FilePanel&) = delete;
  FilePanel& operator=(const FilePanel&) = delete;
  ~FilePanel() override;

  [[nodiscard]] bool visible() const { return !dialog_.isNull(); }

  /// Does nothing while it is open.
  Q_INVOKABLE void open(const FileRequest& request);

 signals:
  void accepted(const QList<QUrl>& files);  ///< at least one; of Save exactly one, with its suffix
  void rejected();

 private:
  [[nodiscard]] QWindow* owner() const;
  void finish(int result);

  QPointer<QFileDialog> dialog_;
  QObject* palette_ = nullptr;  // of the window: Qt's own panel takes its colours
};

}  // namespace gavrel
