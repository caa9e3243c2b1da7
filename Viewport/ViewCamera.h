#pragma once

#include <qqml.h>
#include <QObject>
#include <QPointer>
#include <QQuaternion>
#include <QVector3D>
#include <optional>

#include "Scene/OrbitCamera.h"
#include "Viewport/DrawnScene.h"

namespace gavrel {

/// The user's camera: its movements by mouse, trackpad, keys and menu, and the values that the renderer takes.
class ViewCamera : public QObject {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(gavrel::DrawnScene* contents READ contents WRITE setContents REQUIRED)
  Q_PROPERTY(double width READ width WRITE setWidth NOTIFY changed)
  Q_PROPERTY(double height READ height WRITE setHeight NOTIFY changed)
  Q_PROPERTY(double corner MEMBER corner_ NOTIFY changed)
  Q_PROPERTY(bool zUp READ zUp WRITE setZUp NOTIFY changed)
  Q_PROPERTY(bool parallel READ parallel WRITE setParallel NOTIFY changed)
  Q_PROPERTY(QVector3D lightDirection READ lightDirection NOTIFY changed)
  Q_PROPERTY(QVector3D position READ position NOTIFY changed)
  Q_PROPERTY(QQuaternion rotation READ rotation NOTIFY changed)
  Q_PROPERTY(double fieldOfView READ fieldOfView CONSTANT)
  Q_PROPERTY(double clipNear READ clipNear NOTIFY changed)
  Q_PROPERTY(double clipFar READ clipFar NOTIFY changed)
  Q_PROPERTY(double magnification READ magnification NOTIFY changed)
  Q_PROPERTY(double thickening READ thickening NOTIFY changed)
  Q_PROPERTY(double thickness READ thickness NOTIFY changed)

 public:
  enum StandardView { Front, Top, Right, Isometric, Overview };
  Q_ENUM(StandardView)

  using QObject::QObject;

  [[nodiscard]] DrawnScene* contents() const { return contents_; }
  void setContents(DrawnScene* value);
  [[nodiscard]] const OrbitCamera& camera() const { return camera_; }

  [[nodiscard]] double width() const { return camera_.width; }
  void setWidth(double value);
  [[nodiscard]] double height() const { return camera_.height; }
  void setHeight(double value);

  /// Whether z is kept upright instead of y. A change shows the whole structure from the like direction.
  [[nodiscard]] bool zUp() const { return camera_.zUp; }
  void setZUp(bool value);

  /// Whether the projection is parallel instead of in perspective. A change keeps the size of the structure's middle.
  [[nodiscard]] bool parallel() const { return camera_.parallel; }
  void setParallel(bool value);

  /// Towards the light, which turns with the upright axis: from above and in front.
  [[nodiscard]] QVector3D lightDirection() const;
  [[nodiscard]] QVector3D position() const;
  [[nodiscard]] QQuaternion rotation() const;
  [[nodiscard]] double fieldOfView() const { return OrbitCamera::fieldOfView; }
  [[nodiscard]] double clipNear() const;
  [[nodiscard]] double clipFar() const;
  /// Pixels per unit of length in parallel projection.
  [[nodiscard]] double magnification() const { return camera_.height / camera_.span; }
  /// Factors on a shape's thickness, per unit of distance and at least, so that thin shapes stay visible from afar; see
  /// Ray.
  [[nodiscard]] double thickening() const;
  [[nodiscard]] double thickness() const;

  /// Radius in pixels with which a ball there is drawn.
  [[nodiscard]] double drawnRadius(double radius, const OrbitCamera::PicturePoint& there) const;

  /// Begins a drag at a point of the picture: the shape there stays under the pointer, or is the centre of rotation.
  Q_INVOKABLE void grab(double x, double y);
  /// Turns the camera as if the pointer, moved by (dx, dy) pixels, turned the structure.
  Q_INVOKABLE void orbit(double dx, double dy);
  Q_INVOKABLE void pan(double dx, double dy);
  /// Magnifies by `factor` about this point of the picture.
  Q_INVOKABLE void zoom(double factor, double x, double y);

  /// Turns to a standard direction and fits.
  Q_INVOKABLE void show(StandardView view);
  /// Looks at the whole structure, in the present direction.
  Q_INVOKABLE void fit();

  Q_INVOKABLE void click(double x, double y);
  /// True if a click there would pick something.
  Q_INVOKABLE bool hover(double x, double y);

 signals:
  void changed();
  /// The user moved the camera, or the size of the picture changed.
  void turned();

 private:
  /// Announces a new view; `fitted` if it shows the whole structure and must do so after the picture's size changes.
  void moved(bool fitted);
  void fitToShapes();
  [[nodiscard]] Ray rayAt(double x, double y) const;
  [[nodiscard]] std::optional<Vector3> hitAt(double x, double y) const;

  QPointer<DrawnScene> contents_;
  OrbitCamera camera_;
  Vector3 reference_;  // the point that the present drag moves or turns about
  /// Side of the square in the picture's lower left corner that a fitted view leaves free, in pixels.
  double corner_ = 0;
  bool fitted_ = false;
};

}  // namespace gavrel
