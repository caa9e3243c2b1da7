#include "Exchange/Export.h"
#include "Exchange/TableColumn.h"
#include "Platform/AtomicFile.h"

namespace gavrel {

namespace {

std::optional<Failure> writeTable(const Project& project, std::span<const TableColumn> columns, std::int64_t rows,
                                  const std::filesystem::path& path, Results results) {
  return replaceFile(path, [&](const ByteSink& sink) {
    constexpr std::size_t piece = 1 << 16;
    std::string text;
    for (const TableColumn& column : columns) {
      if (!text.empty()) text += ',';
      text += column.name;
    }
    text += '\n';
    for (std::int64_t row = 0; row < rows; ++row) {
      for (const TableColumn& column : columns) {
        if (column.origin != TableColumn::Origin::result || results == Results::written)
          text += formatCell(column.cell(project, row));
        text += ',';
      }
      text.back() = '\n';
      if (text.size() < piece) continue;
      sink(text);
      text.clear();
    }
    sink(text);
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
