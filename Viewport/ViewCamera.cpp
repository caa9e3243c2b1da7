#include "Viewport/ViewCamera.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace gavrel {

namespace {

constexpr double pi = std::numbers::pi;
constexpr double turnPerHeight = pi;    // of a drag from the picture's lower edge to its upper one
constexpr double thinnestPixels = 2.5;  // smallest drawn radius of a shape that is thinnestLength thick
constexpr double thinnestLength = 0.1;

QVector3D single(const Vector3& v) {
  return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

}  // namespace

void ViewCamera::setContents(DrawnScene* value) {
  contents_ = value;
  connect(value, &DrawnScene::updated, this, [this] {
    camera_.retreatFrom(contents_->bounds());
    emit changed();
  });
  emit changed();
}

void ViewCamera::setWidth(double value) {
  camera_.width = std::max(value, 1.0);
  moved(fitted_);
}

void ViewCamera::setHeight(double value) {
  camera_.height = std::max(value, 1.0);
  moved(fitted_);
}

void ViewCamera::setZUp(bool value) {
  if (value == camera_.zUp) return;
  camera_.zUp = value;
  fit();
}

void ViewCamera::setParallel(bool value) {
  if (value == camera_.parallel) return;
  camera_.setParallel(value, contents_->bounds().centre());
  moved(fitted_);
}

QVector3D ViewCamera::lightDirection() const {
  return camera_.zUp ? QVector3D(0, -1, 1).normalized() : QVector3D(0, 1, 1).normalized();
}

QVector3D ViewCamera::position() const {
  return single(contents_ ? camera_.position - contents_->origin() : camera_.position);
}

QQuaternion ViewCamera::rotation() const {
  const auto [right, up, back] = camera_.axes();
  return QQuaternion::fromAxes(single(right), single(up), single(back));
}

double ViewCamera::clipNear() const {
  return contents_ ? camera_.clipPlanes(contents_->bounds()).near : 0.1;
}

double ViewCamera::clipFar() const {
  return contents_ ? camera_.clipPlanes(contents_->bounds()).far : 1000;
}

double ViewCamera::thickening() const {
  return camera_.parallel ? 0 : thinnestPixels * camera_.pixelAngle() / thinnestLength;
}

double ViewCamera::thickness() const {
  return camera_.parallel ? std::max(1.0, thinnestPixels * camera_.pixelLength(1) / thinnestLength) : 1;
}

double ViewCamera::drawnRadius(double radius, const OrbitCamera::PicturePoint& there) const {
  return radius * std::max(thickness(), thickening() * there.depth) / camera_.pixelLength(there.depth);
}

void ViewCamera::grab(double x, double y) {
  reference_ = hitAt(x, y).value_or(contents_->bounds().centre());
}

void ViewCamera::orbit(double dx, double dy) {
  const double perPixel = turnPerHeight / camera_.height;
  camera_.orbit(reference_, -dx * perPixel, dy * perPixel);
  moved(false);
}

void ViewCamera::pan(double dx, double dy) {
  camera_.pan(reference_, dx, dy);
  moved(false);
}

void ViewCamera::zoom(double factor, double x, double y) {
  auto reference = hitAt(x, y);
  if (!reference) {
    // Without a shape there, the depth of the structure's centre is used.
    const Ray ray = rayAt(x, y);
    const double depthOfUnitDistance = camera_.depth(ray.at(1));
    reference = ray.at(std::abs(camera_.depth(contents_->bounds().centre())) / depthOfUnitDistance);
  }
  camera_.zoom(*reference, factor, std::max(contents_->bounds().radius() * 1e-4, 1e-6));
  moved(false);
}

void ViewCamera::show(StandardView view) {
  switch (view) {
    case Front:
      camera_.yaw = camera_.pitch = 0;
      break;
    case Top:
      camera_.yaw = 0;
      camera_.pitch = -pi / 2;
      break;
    case Right:
      camera_.yaw = pi / 2;
      camera_.pitch = 0;
      break;
    case Isometric:
      camera_.yaw = pi / 4;
      camera_.pitch = -std::atan(std::numbers::sqrt2 / 2);
      break;
    case Overview:
      camera_.yaw = pi / 7;
      camera_.pitch = -pi / 9;
      break;
  }
  fit();
}

void ViewCamera::fit() {
  moved(true);
}

void ViewCamera::moved(bool fitted) {
  fitted_ = fitted;
  if (fitted_)
    fitToShapes();
  else
    camera_.retreatFrom(contents_->bounds());
  emit changed();
  emit turned();
}

void ViewCamera::fitToShapes() {
  const auto centres = contents_->shapeCentres();
  camera_.fit(centres);
  const auto inCorner = [this](const Vector3& centre) {
    const auto seen = camera_.project(centre);
    return seen && seen->x < corner_ && seen->y > camera_.height - corner_;
  };
  if (std::ranges::none_of(centres, inCorner)) return;
  OrbitCamera lifted = camera_;
  camera_.fit(centres, {corner_, 0});
  lifted.fit(centres, {0, corner_});
  const Vector3 middle = contents_->bounds().centre();
  const auto pixelLength = [&](const OrbitCamera& camera) { return camera.pixelLength(camera.depth(middle)); };
  if (pixelLength(lifted) < pixelLength(camera_)) camera_ = lifted;
}

void ViewCamera::click(double x, double y) {
  contents_->click(rayAt(x, y));
}

bool ViewCamera::hover(double x, double y) {
  return contents_->highlight(rayAt(x, y));
}

Ray ViewCamera::rayAt(double x, double y) const {
  Ray ray = camera_.ray(x, y);
  ray.thickening = thickening();
  ray.thickness = thickness();
  return ray;
}

std::optional<Vector3> ViewCamera::hitAt(double x, double y) const {
  const Ray ray = rayAt(x, y);
  const auto hits = hitTest(contents_->scene(), ray);
  if (hits.empty()) return std::nullopt;
  return ray.at(hits.front().distance);
}

}  // namespace gavrel
