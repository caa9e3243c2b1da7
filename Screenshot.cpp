#include "Screenshot.h"

#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <cstdio>
#include <string>

#include "Platform/AtomicFile.h"
#include "Platform/OutputFiles.h"
#include "PreviewContent/ProjectViewModel.h"
#include "Workbench/PngFile.h"

namespace gavrel {

namespace {

constexpr int failure = 1;

int fail(const std::string& why) {
  std::fprintf(stderr, "No picture: %s\n", why.c_str());
  return failure;
}

}  // namespace

int writeScreenshot(const Options& options) {
  if (const auto reason = whyNotWritable({*options.screenshot}, {*options.file})) return fail(reason->reason);
  ProjectViewModel viewModel;
  if (!viewModel.loadProject(options.file)) return failure;
  if (options.solve) (*viewModel.project)->Solve();

  QQuickView view;
  view.engine()->addImportPath(QStringLiteral("qrc:/qt/qml"));
  view.setInitialProperties({{"projectViewModel", QVariant::fromValue(&viewModel)},
                             {"displacementMagnification", options.magnification},
                             {"isStrainVisualizationActive", options.strain}});
  view.setSource(QUrl(QStringLiteral("qrc:/qt/qml/Gavrel/PreviewContent/Picture.qml")));
  if (view.rootObject() == nullptr) return fail("the 3D view could not be made");
  const QSizeF size = QSizeF(options.size.width, options.size.height) / view.effectiveDevicePixelRatio();
  view.rootObject()->setSize(size);
  view.resize(size.toSize());
  QMetaObject::invokeMethod(view.rootObject(), "prepare");
  const QImage picture = view.grabWindow();
  if (picture.isNull()) return fail("the display cannot draw in 3D with OpenGL");

  const auto png = encodePng(picture);
  if (!png) return fail("the picture is too large");
  if (const auto reason = replaceFile(*options.screenshot, *png)) return fail(reason->reason);
  return 0;
}

}  // namespace gavrel
