#include "Exchange/DxfInsert.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace gavrel {

namespace {

Vector3 cross(const Vector3& a, const Vector3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

Vector3 unit(const Vector3& v) {
  return v * (1 / length(v));
}

/// The axes that the format derives from that across their plane.
Placement planeAcross(const DxfEntity& entity) {
  const Vector3 extrusion = entity.extrusion();
  const double size = std::hypot(extrusion.x, extrusion.y, extrusion.z);
  if (!std::isnormal(size)) entity.place.refuse("the INSERT has an extrusion direction without a usable length");
  constexpr double almost = 1.0 / 64;
  const Vector3 z{extrusion.x / size, extrusion.y / size, extrusion.z / size};
  const bool isUpright = std::abs(z.x) < almost && std::abs(z.y) < almost;
  const Vector3 x = unit(cross(isUpright ? Vector3{0, 1, 0} : Vector3{0, 0, 1}, z));
  return {{}, x, unit(cross(z, x)), z};
}

/// Axes turned about z; quarter turns are exact.
Placement turned(double degrees) {
  constexpr double quarter = 90;
  int quarters = 0;
  const double rest = std::remquo(degrees, quarter, &quarters) * std::numbers::pi / 180;
  double c = std::cos(rest);
  double s = std::sin(rest);
  for (int i = 0; i < (quarters & 3); ++i) c = std::exchange(s, c) * -1;
  return {{}, {c, s, 0}, {-s, c, 0}, {0, 0, 1}};
}

}  // namespace

DxfInsert DxfInsert::read(const DxfEntity& entity) {
  const Placement plane = planeAcross(entity);
  Placement axes = plane.place(turned(entity.number(50, 0)));
  axes.origin = plane.turn(entity.point(10));
  DxfInsert insert{.place = entity.place,
                   .name = std::string(entity.text(2)),
                   .first = axes,
                   .columnStep = axes.x * entity.number(44, 0),
                   .rowStep = axes.y * entity.number(45, 0),
                   .columns = std::max(1, entity.wholeNumber(70, 1)),
                   .rows = std::max(1, entity.wholeNumber(71, 1))};
  insert.first.x = axes.x * entity.number(41, 1);
  insert.first.y = axes.y * entity.number(42, 1);
  insert.first.z = axes.z * entity.number(43, 1);
  return insert;
}

}  // namespace gavrel
