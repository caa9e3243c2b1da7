#pragma once

#include <qqml.h>
#include <QQuickItem>

namespace gavrel {

/// Whether a graphics processor draws the pictures or the CPU computes them. Known once the item's window has drawn its
/// first picture; until then the CPU is assumed.
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

}  // namespace gavrel
