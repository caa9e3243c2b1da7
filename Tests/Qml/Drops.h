#pragma once

#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QFile>
#include <QMimeData>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QUrl>

namespace gavrel {

/// Files for tests, and their dropping on the middle of an item, as the window system would.
class Drops : public QObject {
  Q_OBJECT

 public:
  Q_INVOKABLE void drop(QQuickItem* item, const QList<QUrl>& files) {
    const QPointF place = item->mapToScene({item->width() / 2, item->height() / 2});
    QMimeData data;
    data.setUrls(files);
    QDragEnterEvent enter(place.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QDragMoveEvent move(place.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QDropEvent dropped(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    for (QEvent* event : {static_cast<QEvent*>(&enter), static_cast<QEvent*>(&move), static_cast<QEvent*>(&dropped)})
      QCoreApplication::sendEvent(item->window(), event);
  }

  /// The address of a file that goes with the test program.
  Q_INVOKABLE [[nodiscard]] QUrl temporaryFile(const QString& name) const {
    return QUrl::fromLocalFile(folder_.filePath(name));
  }
  Q_INVOKABLE void remove(const QString& name) const { QFile::remove(folder_.filePath(name)); }

 private:
  QTemporaryDir folder_;
};

}  // namespace gavrel
