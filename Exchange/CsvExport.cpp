#include "Exchange/Export.h"
#include "Exchange/TableColumn.h"
#include "Platform/AtomicFile.h"
#include "Platform/OrderedText.h"

namespace gavrel {

namespace {

std::optional<Failure> writeTable(const Project& project, std::span<const TableColumn> columns, std::int64_t rows,
                                  const std::filesystem::path& path, Results results) {
  const auto writeRows = [&](std::size_t first, std::size_t last, std::string& text) {
    for (auto row = static_cast<std::int64_t>(first); row < static_cast<std::int64_t>(last); ++row) {
      for (const TableColumn& column : columns) {
        if (column.origin != TableColumn::Origin::result || results == Results::written)
          text += formatCell(column.cell(project, row));
        text += ',';
      }
      text.back() = '\n';
    }
  };
  return replaceFile(path, [&](const ByteSink& sink) {
    constexpr std::size_t rowsPerPiece = 1024;
    std::string heading;
    for (const TableColumn& column : columns) heading += std::string(column.name) + ',';
    heading.back() = '\n';
    sink(heading);
    makeInOrder(static_cast<std::size_t>(rows), rowsPerPiece, writeRows, sink);
  });
}

}  // namespace

std::optional<Failure> exportNodes(const Project& project, const std::filesystem::path& path, Results results) {
  return writeTable(project, nodeColumns(), project.nodeCount(), path, results);
}

std::optional<Failure> exportElements(const Project& project, const std::filesystem::path& path, Results results) {
  return writeTable(project, elementColumns(), elementCount(project), path, results);
}

}  // namespace gavrel
