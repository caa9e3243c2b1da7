#include "Viewport/ShapeGeometry.h"

#include <QByteArray>
#include <QVector3D>
#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace gavrel {

namespace {

struct Vertex {
  QVector3D position;
  QVector3D normal;
};

/// Vertices and triangles, counter-clockwise seen from outside.
class Mesh {
 public:
  std::vector<Vertex> vertices;
  std::vector<quint16> indices;

  /// A band of quads between two rings of the surface of revolution. The normal has these components outward and up.
  struct Ring {
    float radius, height, outward, up;
  };
  void addBand(const Ring& lower, const Ring& upper, int sides) {
    const auto first = static_cast<quint16>(vertices.size());
    for (int i = 0; i <= sides; ++i) {
      for (const Ring& ring : {lower, upper}) vertices.push_back(onRing(ring, i, sides));
    }
    for (int i = 0; i < sides; ++i) {
      const auto at = static_cast<quint16>(first + 2 * i);
      if (lower.radius > 0) addTriangle(at, quint16(at + 2), quint16(at + 1));
      if (upper.radius > 0) addTriangle(quint16(at + 2), quint16(at + 3), quint16(at + 1));
    }
  }

  /// A disc across the axis that faces down.
  void addBase(float height, int sides) {
    const auto first = static_cast<quint16>(vertices.size());
    for (int i = 0; i < sides; ++i) vertices.push_back(onRing({1, height, 0, -1}, i, sides));
    for (int i = 1; i + 1 < sides; ++i) addTriangle(first, quint16(first + i + 1), quint16(first + i));
  }

 private:
  static Vertex onRing(const Ring& ring, int i, int sides) {
    const float angle = 2 * std::numbers::pi_v<float> * static_cast<float>(i) / static_cast<float>(sides);
    const float x = std::sin(angle);
    const float z = std::cos(angle);
    return {{ring.radius * x, ring.height, ring.radius * z}, {ring.outward * x, ring.up, ring.outward * z}};
  }

  void addTriangle(quint16 a, quint16 b, quint16 c) { indices.insert(indices.end(), {a, b, c}); }
};

Mesh ballMesh(int sides) {
  Mesh mesh;
  const int bands = std::max(2, sides / 2);
  const auto ring = [bands](int i) {
    const float latitude = std::numbers::pi_v<float> * (static_cast<float>(i) / static_cast<float>(bands) - 0.5F);
    const float radius = i == 0 || i == bands ? 0 : std::cos(latitude);
    return Mesh::Ring{radius, std::sin(latitude), radius, std::sin(latitude)};
  };
  for (int i = 0; i < bands; ++i) mesh.addBand(ring(i), ring(i + 1), sides);
  return mesh;
}

/// Without its ends, which the balls of the nodes and the heads of arrows hide.
Mesh tubeMesh(int sides) {
  Mesh mesh;
  mesh.addBand({1, -0.5F, 1, 0}, {1, 0.5F, 1, 0}, sides);
  return mesh;
}

/// For height 1 and radius 1 the side slopes by 45 degrees; instances of other proportions turn the normals.
Mesh coneMesh(int sides) {
  Mesh mesh;
  const float slope = std::numbers::sqrt2_v<float> / 2;
  mesh.addBand({1, -0.5F, slope, slope}, {0, 0.5F, slope, slope}, sides);
  mesh.addBase(-0.5F, sides);
  return mesh;
}

template <class Element>
QByteArray copyBytes(const std::vector<Element>& elements) {
  return {reinterpret_cast<const char*>(elements.data()), static_cast<qsizetype>(elements.size() * sizeof(Element))};
}

}  // namespace

ShapeGeometry::ShapeGeometry(QQuick3DObject* parent) : QQuick3DGeometry(parent) {
  build();
}

void ShapeGeometry::setShape(Shape value) {
  if (value == shape_) return;
  shape_ = value;
  build();
}

void ShapeGeometry::setSides(int value) {
  value = std::max(value, 3);
  if (value == sides_) return;
  sides_ = value;
  build();
}

void ShapeGeometry::build() {
  const Mesh mesh = shape_ == Ball ? ballMesh(sides_) : shape_ == Tube ? tubeMesh(sides_) : coneMesh(sides_);
  clear();
  setStride(sizeof(Vertex));
  addAttribute(Attribute::PositionSemantic, offsetof(Vertex, position), Attribute::F32Type);
  addAttribute(Attribute::NormalSemantic, offsetof(Vertex, normal), Attribute::F32Type);
  addAttribute(Attribute::IndexSemantic, 0, Attribute::U16Type);
  setVertexData(copyBytes(mesh.vertices));
  setIndexData(copyBytes(mesh.indices));
  setPrimitiveType(PrimitiveType::Triangles);
  setBounds({-1, -1, -1}, {1, 1, 1});
  update();
  emit changed();
}

}  // namespace gavrel
