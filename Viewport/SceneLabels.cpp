#include "Viewport/SceneLabels.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QSet>
#include <algorithm>
#include <utility>
#include <vector>

namespace gavrel {

namespace {

constexpr double cell = 8;  // pixels; a label needs free cells of a grid of this width
const QColor nodeInk(255, 255, 255);
const QColor elementInk(30, 30, 30);

struct Label {
  std::int64_t number;
  OrbitCamera::PicturePoint point;
  bool isNode;
};

/// Which cells of the picture already carry a label.
class Occupancy {
 public:
  /// Takes the cells under `box`; false if one was taken before.
  bool take(const QRectF& box) {
    const auto first = std::pair(int(box.left() / cell), int(box.top() / cell));
    const auto last = std::pair(int(box.right() / cell), int(box.bottom() / cell));
    for (int x = first.first; x <= last.first; ++x) {
      for (int y = first.second; y <= last.second; ++y) {
        if (taken_.contains({x, y})) return false;
      }
    }
    for (int x = first.first; x <= last.first; ++x) {
      for (int y = first.second; y <= last.second; ++y) taken_.insert({x, y});
    }
    return true;
  }

 private:
  QSet<std::pair<int, int>> taken_;
};

}  // namespace

SceneLabels::SceneLabels(QQuickItem* parent) : CameraOverlay(parent) {
  connect(this, &SceneLabels::changed, this, [this] { update(); });
}

void SceneLabels::paint(QPainter* painter) {
  using Kind = Source::Kind;
  std::vector<Label> labels;
  for (const SceneNode& node : camera()->contents()->scene().rootNode.children) {
    if (!node.source) continue;
    const auto [kind, number] = *node.source;
    const bool isElement = kind == Kind::bar || kind == Kind::beam;
    if (!(kind == Kind::node && nodeNumbers_) && !(isElement && elementNumbers_)) continue;
    const auto point = camera()->camera().project(node.position);
    if (!point || point->x < 0 || point->y < 0 || point->x > width() || point->y > height()) continue;
    labels.push_back({number, *point, kind == Kind::node});
  }
  // Nodes before elements, near before far.
  std::ranges::sort(labels, {}, [](const Label& label) { return std::pair(!label.isNode, label.point.depth); });

  QFont font = painter->font();
  font.setPixelSize(12);
  painter->setFont(font);
  const QFontMetricsF metrics(font);
  Occupancy occupancy;
  for (const Label& label : labels) {
    const QString text = QString::number(label.number);
    QRectF box(0, 0, metrics.horizontalAdvance(text) + 6, metrics.height());
    // Nodes carry their number above and to the right, elements in the middle.
    if (label.isNode) {
      box.moveBottomLeft({label.point.x + 5, label.point.y - 4});
    } else {
      box.moveCenter({label.point.x, label.point.y});
    }
    if (!occupancy.take(box)) continue;
    painter->setPen(Qt::NoPen);
    painter->setBrush(label.isNode ? QColor(20, 32, 80, 190) : QColor(255, 246, 190, 215));
    painter->drawRoundedRect(box, 3, 3);
    painter->setPen(label.isNode ? nodeInk : elementInk);
    painter->drawText(box, Qt::AlignCenter, text);
  }
}

}  // namespace gavrel
