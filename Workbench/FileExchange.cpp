#include "Workbench/FileExchange.h"

#include <string>

#include "Exchange/Export.h"
#include "Platform/AtomicFile.h"
#include "Platform/Console.h"
#include "Platform/OutputFiles.h"
#include "Platform/ShownText.h"
#include "PreviewContent/FileUrl.h"
#include "Workbench/PngFile.h"

namespace gavrel {

namespace {

QString report(const std::optional<Failure>& failure, const std::filesystem::path& file) {
  if (!failure) {
    printLine("Exported " + shownText(file.filename().string()));
    return {};
  }
  printLine("Failed to export: " + failure->reason);
  return FileExchange::tr("Nothing was exported.\n\n%1").arg(QString::fromStdString(failure->reason));
}

}  // namespace

QString FileExchange::importFiles(const QList<QUrl>& files, double area, double youngModulus, bool isNonLinear) {
  std::vector<std::filesystem::path> paths;
  for (const QUrl& file : files) paths.push_back(toPath(file).value_or(file.toString().toStdString()));
  const auto outcome =
      viewModel_.importFiles(paths, {.area = area, .youngModulus = youngModulus, .isNonLinear = isNonLinear});
  if (!outcome) return tr("Nothing was imported.\n\n%1").arg(QString::fromStdString(outcome.failure().reason));
  QString remarks;
  for (const std::string& remark : outcome->remarks) remarks += "\n" + QString::fromStdString(remark);
  if (remarks.isEmpty()) return {};
  return tr("%1 nodes, %2 bars and %3 beams were imported.\n")
             .arg(outcome->nodes)
             .arg(outcome->trusses)
             .arg(outcome->beams) +
         remarks;
}

QString FileExchange::exportNodes(const QUrl& file) {
  return write(gavrel::exportNodes, file);
}

QString FileExchange::exportElements(const QUrl& file) {
  return write(gavrel::exportElements, file);
}

QString FileExchange::exportVtu(const QUrl& file) {
  return write(gavrel::exportVtu, file);
}

QString FileExchange::exportPicture(const QImage& picture, const QUrl& file) {
  const auto png = encodePng(picture);
  if (!png) return tr("The picture is too large.");
  const auto path = *toPath(file);
  if (const auto refused = whyNotExportable(path)) return report(refused, path);
  return report(replaceFile(path, *png), path);
}

QString FileExchange::write(Write write, const QUrl& file) {
  const auto path = *toPath(file);
  if (const auto refused = whyNotExportable(path)) return report(refused, path);
  return report(write(**viewModel_.project, path, viewModel_.hasResults() ? Results::written : Results::leftOut), path);
}

std::optional<Failure> FileExchange::whyNotExportable(const std::filesystem::path& file) const {
  return whyNotWritable({file}, {viewModel_.currentFileUrl.value_or(std::filesystem::path())});
}

}  // namespace gavrel
