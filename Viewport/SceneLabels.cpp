#include "Viewport/SceneLabels.h"

#include <QFontMetricsF>
#include <QHash>
#include <QPainter>
#include <QSet>
#include <algorithm>
#include <cmath>
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
  double radius;  // of a node's ball on the picture
};

/// The balls on the picture, to keep labels clear of them.
class Balls {
 public:
  void add(const QPointF& centre, double radius) {
    largest_ = std::max(largest_, radius);
    byCell_[cellAt(centre)].push_back({centre, radius});
  }

  [[nodiscard]] bool meet(const QRectF& box) const {
    const auto [left, top] = cellAt(box.topLeft() - QPointF(largest_, largest_));
    const auto [right, bottom] = cellAt(box.bottomRight() + QPointF(largest_, largest_));
    for (int x = left; x <= right; ++x) {
      for (int y = top; y <= bottom; ++y) {
        const auto here = byCell_.constFind({x, y});
        if (here != byCell_.constEnd() && std::ranges::any_of(*here, [&](const Ball& ball) { return ball.meets(box); }))
          return true;
      }
    }
    return false;
  }

 private:
  struct Ball {
    QPointF centre;
    double radius;

    [[nodiscard]] bool meets(const QRectF& box) const {
      const double dx = centre.x() - std::clamp(centre.x(), box.left(), box.right());
      const double dy = centre.y() - std::clamp(centre.y(), box.top(), box.bottom());
      return dx * dx + dy * dy < radius * radius;
    }
  };

  static std::pair<int, int> cellAt(const QPointF& point) {
    constexpr double side = 32;
    return {static_cast<int>(std::floor(point.x() / side)), static_cast<int>(std::floor(point.y() / side))};
  }

  QHash<std::pair<int, int>, std::vector<Ball>> byCell_;
  double largest_ = 0;
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
  const QRectF area(0, 0, width(), height());
  std::vector<Label> labels;
  Balls balls;
  for (const SceneNode& node : camera()->contents()->scene().rootNode.children) {
    if (!node.source) continue;
    const auto [kind, number] = *node.source;
    const auto point = camera()->camera().project(node.position);
    if (!point || !area.contains(point->x, point->y)) continue;
    const double radius = kind == Kind::node ? camera()->drawnRadius(std::get<Sphere>(node.content).radius, *point) : 0;
    if (kind == Kind::node) balls.add({point->x, point->y}, radius);
    const bool isElement = kind == Kind::bar || kind == Kind::beam;
    if (!(kind == Kind::node && nodeNumbers_) && !(isElement && elementNumbers_)) continue;
    labels.push_back({number, *point, kind == Kind::node, radius});
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
      const double away = std::sqrt(0.5) * label.radius + 2;
      box.moveBottomLeft({label.point.x + away, label.point.y - away});
    } else {
      box.moveCenter({label.point.x, label.point.y});
    }
    if (balls.meet(box) || !occupancy.take(box)) continue;
    painter->setPen(Qt::NoPen);
    painter->setBrush(label.isNode ? QColor(20, 32, 80, 190) : QColor(255, 246, 190, 215));
    painter->drawRoundedRect(box, 3, 3);
    painter->setPen(label.isNode ? nodeInk : elementInk);
    painter->drawText(box, Qt::AlignCenter, text);
  }
}

}  // namespace gavrel
