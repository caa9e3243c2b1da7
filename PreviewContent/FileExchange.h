#pragma once

#include <qqml.h>
#include <QImage>
#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>

#include "Exchange/Export.h"
#include "PreviewContent/ProjectViewModel.h"

/// Files from and for other programs. Each operation returns what its user should read; empty if all went well.
class FileExchange : public QObject {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(ProjectViewModel* projectViewModel MEMBER viewModel_ REQUIRED)

 public:
  using QObject::QObject;

  /// Members of which a file tells neither get this cross-section and Young's modulus.
  Q_INVOKABLE QString importFiles(const QList<QUrl>& files, double area, double youngModulus, bool isNonLinear);

  Q_INVOKABLE QString exportNodes(const QUrl& file);
  Q_INVOKABLE QString exportElements(const QUrl& file);
  Q_INVOKABLE QString exportVtu(const QUrl& file);
  /// As PNG.
  Q_INVOKABLE QString exportPicture(const QImage& picture, const QUrl& file);

 private:
  using Write = std::optional<Failure> (*)(const Project&, const std::filesystem::path&, Results);
  QString write(Write write, const QUrl& file);

  ProjectViewModel* viewModel_ = nullptr;
};
