#pragma once

#include <QStringList>
#include <cmath>

#include "PreviewContent/SceneContents.h"
#include "Tests/Near.h"
#include "Tests/Structures.h"
#include "Viewport/ViewCamera.h"

namespace gavrel {

/// A 3D area of 900 x 600 pixels without a window. Node 0 is in the middle of the picture, 10 before the camera, node 1
/// 4 to its right and node 2 4 above it; bar 0 joins the first two, beam 0 the last two.
struct SceneArea {
  static constexpr double middleX = 450, middleY = 300;
  const double pixels = 30 / std::sqrt(1.0 / 3);  // of a length of 1 at that depth

  ProjectViewModel model;
  SceneContents contents;
  ViewCamera camera;
  QStringList told;  // what the area says of clicks

  SceneArea() {
    auto project = std::make_shared<Project>();
    for (const Vector3& place : {Vector3{0, 5, 0}, {4, 5, 0}, {0, 9, 0}}) project->addNode(place);
    addBar(*project, 0, 1, 1);
    addBeam(*project, 2, 1, 1, false);
    model.restore(std::move(project), {});
    contents.setProjectViewModel(&model);
    contents.update();
    camera.setContents(&contents);
    camera.setWidth(2 * middleX);
    camera.setHeight(2 * middleY);
    const auto note = [this](const char* what) {
      return [this, what](const QVariant& number) {
        told += what + (number.isNull() ? QString("none") : number.toString());
      };
    };
    QObject::connect(&contents, &SceneContents::nodeSelected, note("node "));
    QObject::connect(&contents, &SceneContents::elementSelected, note("element "));
    QObject::connect(&contents, &SceneContents::nodeClicked, note("clicked "));
    QObject::connect(&contents, &SceneContents::elementClicked, [this](bool isBeam, qint64 element) {
      told += (isBeam ? "clicked beam " : "clicked bar ") + QString::number(element);
    });
  }

  Project& project() { return **model.project; }
};

}  // namespace gavrel
