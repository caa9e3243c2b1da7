#pragma once

#include <qqml.h>
#include <QColor>
#include <QObject>
#include <vector>

#include "Scene/Bounds.h"
#include "Scene/HitTest.h"
#include "Viewport/InstanceTable.h"

namespace gavrel {

/// A scene as tables for the renderer. Derived classes provide the scene's content and the effect of a click.
class DrawnScene : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Only a class that has a scene can be drawn.")
  Q_PROPERTY(gavrel::InstanceTable* balls READ balls CONSTANT)
  Q_PROPERTY(gavrel::InstanceTable* tubes READ tubes CONSTANT)
  Q_PROPERTY(gavrel::InstanceTable* cones READ cones CONSTANT)
  Q_PROPERTY(gavrel::InstanceTable* highlightedBall READ highlightedBall CONSTANT)
  Q_PROPERTY(gavrel::InstanceTable* highlightedTube READ highlightedTube CONSTANT)
  Q_PROPERTY(gavrel::InstanceTable* markedBalls READ markedBalls CONSTANT)
  Q_PROPERTY(gavrel::InstanceTable* markedTubes READ markedTubes CONSTANT)
  Q_PROPERTY(QColor background READ background CONSTANT)

 public:
  using QObject::QObject;

  [[nodiscard]] virtual const Scene& scene() const = 0;
  /// The bounds of all shapes.
  [[nodiscard]] const Bounds& bounds() const { return bounds_; }
  [[nodiscard]] std::vector<Vector3> shapeCentres() const;
  /// The point of the scene that the renderer draws at its own zero.
  [[nodiscard]] const Vector3& origin() const { return origin_; }

  [[nodiscard]] InstanceTable* balls() { return &balls_; }
  [[nodiscard]] InstanceTable* tubes() { return &tubes_; }
  [[nodiscard]] InstanceTable* cones() { return &cones_; }
  [[nodiscard]] InstanceTable* highlightedBall() { return &highlightedBall_; }
  [[nodiscard]] InstanceTable* highlightedTube() { return &highlightedTube_; }
  [[nodiscard]] InstanceTable* markedBalls() { return &markedBalls_; }
  [[nodiscard]] InstanceTable* markedTubes() { return &markedTubes_; }
  [[nodiscard]] QColor background() const;

  /// Handles a click along a ray.
  virtual void click(const Ray& ray) = 0;

  /// Draws the shape that a click along the ray would pick in a lighter colour. True if there is one.
  bool highlight(const Ray& ray);
  Q_INVOKABLE void clearHighlight();

 signals:
  void updated();

 protected:
  [[nodiscard]] static QColor toQColor(const Color& color);
  /// The nearest shape, if it shows a node or an element: parts of arrows have no source.
  [[nodiscard]] static const SceneNode* picked(const std::vector<HitTestResult>& hits);
  /// Rebuilds the tables from the scene and removes the highlight.
  void fillTables();
  /// Draws these shapes, the children of a group, in the colour of marked shapes.
  void drawMarks(const SceneNode& shapes);

 private:
  void showHighlight(const SceneNode* node);
  void append(InstanceTable& balls, InstanceTable& tubes, const SceneNode& node, double growth, const Color& color);

  Bounds bounds_;
  Vector3 origin_;
  InstanceTable balls_;
  InstanceTable tubes_;
  InstanceTable cones_;
  InstanceTable highlightedBall_;
  InstanceTable highlightedTube_;
  InstanceTable markedBalls_;
  InstanceTable markedTubes_;
};

}  // namespace gavrel
