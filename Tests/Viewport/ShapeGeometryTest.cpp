#include "Viewport/ShapeGeometry.h"

#include <gtest/gtest.h>

#include <QVector3D>
#include <cmath>
#include <cstring>
#include <numbers>
#include <vector>

using namespace gavrel;

namespace {

constexpr double pi = std::numbers::pi;

struct Corner {
  QVector3D position, normal;
};

/// The corners of all triangles as the renderer reads them.
std::vector<Corner> readCorners(const ShapeGeometry& geometry) {
  using Attribute = QQuick3DGeometry::Attribute;
  EXPECT_EQ(geometry.attributeCount(), 3);
  EXPECT_EQ(geometry.attribute(0).semantic, Attribute::PositionSemantic);
  EXPECT_EQ(geometry.attribute(1).semantic, Attribute::NormalSemantic);
  EXPECT_EQ(geometry.attribute(2).semantic, Attribute::IndexSemantic);
  std::vector<Corner> corners;
  const QByteArray indices = geometry.indexData(), vertices = geometry.vertexData();
  for (qsizetype i = 0; i < indices.size(); i += qsizetype(sizeof(quint16))) {
    quint16 index = 0;
    std::memcpy(&index, indices.constData() + i, sizeof(index));
    const char* const vertex = vertices.constData() + qsizetype(index) * geometry.stride();
    EXPECT_LT(index * geometry.stride(), vertices.size());
    Corner& corner = corners.emplace_back();
    std::memcpy(&corner.position, vertex + geometry.attribute(0).offset, sizeof(QVector3D));
    std::memcpy(&corner.normal, vertex + geometry.attribute(1).offset, sizeof(QVector3D));
  }
  return corners;
}

/// The normal that the surface has at a point, that of a cone's base where `isBase`.
QVector3D normalAt(ShapeGeometry::Shape shape, const QVector3D& point, const QVector3D& given) {
  const QVector3D outward = QVector3D(given.x(), 0, given.z()).normalized();
  if (shape == ShapeGeometry::Ball) return point;
  if (shape == ShapeGeometry::Tube) return {point.x(), 0, point.z()};
  return given.y() < 0 ? QVector3D(0, -1, 0) : (outward + QVector3D(0, 1, 0)).normalized();
}

TEST(ShapeGeometry, MeshesLieOnTheirShapesAndFaceOutwards) {
  ShapeGeometry geometry;
  for (const auto shape : {ShapeGeometry::Ball, ShapeGeometry::Tube, ShapeGeometry::Cone}) {
    for (const int sides : {3, 4, 8, 20}) {
      SCOPED_TRACE(testing::Message() << "shape " << shape << ", sides " << sides);
      geometry.setShape(shape);
      geometry.setSides(sides);
      const auto corners = readCorners(geometry);
      ASSERT_EQ(corners.size(), 3U * static_cast<unsigned>(geometry.triangles()));
      double volume = 0;  // between the triangles and the origin
      for (std::size_t i = 0; i < corners.size(); i += 3) {
        const Corner* const t = &corners[i];
        const QVector3D area = QVector3D::crossProduct(t[1].position - t[0].position, t[2].position - t[0].position);
        EXPECT_GT(area.length(), 1e-3) << "a triangle without area is drawn in vain";
        volume += QVector3D::dotProduct(t[0].position, area) / 6;
        for (const Corner* corner = t; corner != t + 3; ++corner) {
          const QVector3D& p = corner->position;
          EXPECT_GT(QVector3D::dotProduct(area.normalized(), corner->normal), 0.1);
          EXPECT_LT((corner->normal - normalAt(shape, p, corner->normal)).length(), 1e-5);
          const double across = std::hypot(p.x(), p.z());
          if (shape == ShapeGeometry::Ball) {
            EXPECT_NEAR(p.length(), 1, 1e-5);
          } else {
            EXPECT_NEAR(std::abs(p.y()), 0.5, 1e-6);
            EXPECT_NEAR(across, shape == ShapeGeometry::Cone && p.y() > 0 ? 0 : 1, 1e-5);
          }
        }
      }
      const double section = sides / 2.0 * std::sin(2 * pi / sides);
      if (shape == ShapeGeometry::Tube) {
        EXPECT_NEAR(volume, section * 2 / 3, 1e-5) << "the side alone";
      } else if (shape == ShapeGeometry::Cone) {
        EXPECT_NEAR(volume, section / 3, 1e-5);
      } else {
        // Slices between the latitudes, each with the volume of a frustum.
        const int bands = std::max(2, sides / 2);
        double expected = 0;
        for (int i = 0; i < bands; ++i) {
          const double low = pi * i / bands, high = pi * (i + 1) / bands;
          const double r = std::sin(low), s = std::sin(high);
          expected += section * (std::cos(low) - std::cos(high)) / 3 * (r * r + r * s + s * s);
        }
        EXPECT_NEAR(volume, expected, 1e-5);
        EXPECT_EQ(geometry.triangles(), sides * (2 * bands - 2)) << "one for each side at the poles";
      }
    }
  }
}

}  // namespace
