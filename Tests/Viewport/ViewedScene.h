#pragma once

#include <numbers>

#include "Viewport/ViewCamera.h"

namespace gavrel {

/// A picture of 900 x 600 pixels without a window: a ball in the middle, 10 before the camera, one 4 to its right and
/// one 4 above it, with tubes from the first to the second and from the second to the third.
struct ViewedScene {
  static constexpr double middleX = 450, middleY = 300;

  struct Contents : DrawnScene {
    Scene drawn;

    [[nodiscard]] const Scene& scene() const override { return drawn; }
    void click(const Ray&) override {}
    void update() {
      fillTables();
      emit updated();
    }
  };

  Contents contents;
  ViewCamera camera;

  ViewedScene() {
    using Kind = Source::Kind;
    std::int64_t number = 0;
    for (const Vector3& place : {Vector3{0, 5, 0}, {4, 5, 0}, {0, 9, 0}})
      add({Kind::node, number++}, Sphere{0.1}, place);
    add({Kind::bar, 0}, Tube{0.05, 4}, {2, 5, 0}, std::numbers::pi / 2);
    add({Kind::beam, 0}, Tube{0.05, 4 * std::numbers::sqrt2}, {2, 7, 0}, std::numbers::pi / 4);
    contents.update();
    camera.setContents(&contents);
    camera.setWidth(2 * middleX);
    camera.setHeight(2 * middleY);
  }

 private:
  /// A shape turned by `angle` about z.
  void add(const Source& source, decltype(SceneNode::content) content, const Vector3& position, double angle = 0) {
    SceneNode node;
    node.source = source;
    node.content = content;
    node.position = position;
    node.rotation = {{0, 0, 1}, angle};
    contents.drawn.rootNode.children.push_back(node);
  }
};

}  // namespace gavrel
