#pragma once

#include <QCoreApplication>
#include <QImage>
#include <QList>
#include <QString>
#include <QUrl>

#include "Exchange/Export.h"
#include "PreviewContent/ProjectViewModel.h"

namespace gavrel {

/// Files from and for other programs. Each operation returns what its user should read; empty if all went well.
class FileExchange {
  Q_DECLARE_TR_FUNCTIONS(FileExchange)

 public:
  /// Into and from the view model's project. The view model outlives this.
  explicit FileExchange(ProjectViewModel& viewModel) : viewModel_(viewModel) {}

  /// Elements without a cross-section or Young's modulus in the files get the given one.
  [[nodiscard]] QString importFiles(const QList<QUrl>& files, double area, double youngModulus, bool isNonLinear);

  [[nodiscard]] QString exportNodes(const QUrl& file);
  [[nodiscard]] QString exportElements(const QUrl& file);
  [[nodiscard]] QString exportVtu(const QUrl& file);
  /// As PNG.
  [[nodiscard]] QString exportPicture(const QImage& picture, const QUrl& file);

 private:
  using Write = std::optional<Failure> (*)(const Project&, const std::filesystem::path&, Results);
  QString write(Write write, const QUrl& file);
  /// Why an export may not replace `file`: above all because it is the file of the project that is open.
  [[nodiscard]] std::optional<Failure> whyNotExportable(const std::filesystem::path& file) const;

  ProjectViewModel& viewModel_;
};

}  // namespace gavrel
