#pragma once

#include <qqml.h>
#include <QQuickItem>

/// Whether pictures are drawn by a graphics processor or computed by the main one. Known when the item's window draws
/// for the first time; until then the slower is assumed.
class GraphicsHardware : public QQuickItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(bool accelerated READ accelerated NOTIFY acceleratedChanged)

 public:
  using QQuickItem::QQuickItem;

  [[nodiscard]] bool accelerated() const { return accelerated_; }

 signals:
  void acceleratedChanged();

 protected:
  void itemChange(ItemChange change, const ItemChangeData& data) override;

 private:
  void look();

  bool accelerated_ = false;
};
