#pragma once

#include <qqml.h>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QUrl>

class QFileDialog;
class QWindow;

/// The panel in which a user chooses files: the desktop's own where it has one, Qt's otherwise. It never asks whether
/// an existing file may be replaced, since some desktops ask before the suffix is added and some not at all: that is
/// for the panel's owner. While it is open, the program's windows take no input.
class FilePanel : public QObject {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(Purpose purpose MEMBER purpose_)
  Q_PROPERTY(QString title MEMBER title_)
  Q_PROPERTY(QString acceptLabel MEMBER acceptLabel_)
  Q_PROPERTY(QStringList nameFilters MEMBER nameFilters_)
  Q_PROPERTY(QString defaultSuffix MEMBER defaultSuffix_)
  Q_PROPERTY(QObject* palette MEMBER palette_)
  Q_PROPERTY(bool visible READ visible NOTIFY visibleChanged)

 public:
  enum Purpose { OpenOne, OpenMany, Save };
  Q_ENUM(Purpose)

  using QObject::QObject;
  FilePanel(const FilePanel&) = delete;
  FilePanel& operator=(const FilePanel&) = delete;
  ~FilePanel() override;

  [[nodiscard]] bool visible() const { return !dialog_.isNull(); }

  /// Shows the files of `folder`, with `name` proposed for a file to be written. Does nothing while it is open.
  Q_INVOKABLE void open(const QUrl& folder, const QString& name = {});

  [[nodiscard]] Q_INVOKABLE static bool exists(const QUrl& file);
  /// The last part of the file's path.
  [[nodiscard]] Q_INVOKABLE static QString nameOf(const QUrl& file) { return file.fileName(); }

 signals:
  void accepted(const QList<QUrl>& files);  ///< at least one; of Save exactly one, with its suffix
  void rejected();
  void visibleChanged();

 private:
  [[nodiscard]] QWindow* owner() const;
  void finish(int result);

  QPointer<QFileDialog> dialog_;
  Purpose purpose_ = OpenOne;
  QString title_;
  QString acceptLabel_;
  QStringList nameFilters_;
  QString defaultSuffix_;
  QObject* palette_ = nullptr;  // of the window: Qt's own panel takes its colours
};
