#pragma once

#include <qqml.h>
#include <QPointer>
#include <QQuick3DGeometry>

#include "Viewport/InstanceTable.h"

namespace gavrel {

/// The axes of a table's tubes as lines, each in its tube's colour: what can be drawn often enough without a graphics
/// processor. Follows the table while `shown`.
class LineGeometry : public QQuick3DGeometry {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(gavrel::InstanceTable* tubes READ tubes WRITE setTubes REQUIRED)
  Q_PROPERTY(bool shown READ shown WRITE setShown NOTIFY shownChanged)

 public:
  explicit LineGeometry(QQuick3DObject* parent = nullptr);

  [[nodiscard]] InstanceTable* tubes() const { return tubes_; }
  void setTubes(InstanceTable* value);
  [[nodiscard]] bool shown() const { return shown_; }
  void setShown(bool value);

 signals:
  void shownChanged();

 private:
  void buildIfShown();

  QPointer<InstanceTable> tubes_;
  bool shown_ = false;
  bool outdated_ = true;
};

}  // namespace gavrel
