#include "Viewport/AxisTriad.h"

#include <QPainter>
#include <algorithm>
#include <array>

namespace gavrel {

namespace {

struct Arm {
  QString letter;
  QColor color;
  QPointF direction;  // on the picture, length 1 for an axis across the line of sight
  double towards;     // component towards the viewer
};

}  // namespace

void AxisTriad::paint(QPainter* painter) {
  const auto [right, up, back] = camera()->camera().axes();
  std::array<Arm, 3> arms{{{QStringLiteral("x"), QColor(0xff, 0x5a, 0x4f), {right.x, -up.x}, back.x},
                           {QStringLiteral("y"), QColor(0x7d, 0xe0, 0x6b), {right.y, -up.y}, back.y},
                           {QStringLiteral("z"), QColor(0x6d, 0xb4, 0xff), {right.z, -up.z}, back.z}}};
  // Axes that point away from the viewer are painted first.
  std::ranges::sort(arms, {}, &Arm::towards);

  const QPointF middle(width() / 2, height() / 2);
  const double reach = std::min(width(), height()) / 2 - 10;
  QFont font = painter->font();
  font.setPixelSize(13);
  font.setBold(true);
  painter->setFont(font);
  for (const Arm& arm : arms) {
    painter->setPen(QPen(arm.color, 2.5, Qt::SolidLine, Qt::RoundCap));
    painter->drawLine(middle, middle + arm.direction * (reach - 6));
    const QPointF letter = middle + arm.direction * (reach + 3);
    painter->drawText(QRectF(letter.x() - 8, letter.y() - 8, 16, 16), Qt::AlignCenter, arm.letter);
  }
}

}  // namespace gavrel
