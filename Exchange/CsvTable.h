#pragma once

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Exchange/Lines.h"

namespace gavrel {

/// A file of values with a heading. It holds only the file's text; rows are read from it one at a time.
class CsvTable {
 public:
  static constexpr std::size_t maxColumns = 1000;

  /// One line of values. They are views of the table's text, or of `unquoted`.
  struct Row {
    std::size_t line = 0;
    std::vector<std::string_view> fields = {};
    std::deque<std::string> unquoted = {};  ///< values that hold quotation marks
  };

  /// Throws ImportError for a text without a heading, for columns of the same name and for more than `maxColumns`.
  explicit CsvTable(std::string text);

  [[nodiscard]] const std::vector<std::string>& names() const { return names_; }  ///< in lower case
  [[nodiscard]] char separator() const { return separator_; }

  /// The place of the column of this name, in whatever case.
  [[nodiscard]] std::optional<std::size_t> column(std::string_view name) const;
  [[nodiscard]] bool isOfNodes() const { return column("x") && column("y"); }
  [[nodiscard]] bool isOfElements() const { return column("start") && column("end"); }

  /// Calls `visit` with each row, which is valid during the call only. Throws ImportError for rows of another length
  /// than the heading.
  template <class Visit>
  void forEachRow(Visit&& visit) const {
    Lines lines(std::string_view(text_).substr(firstRow_), linesBefore_);
    Row row;
    while (readRow(lines, row)) visit(std::as_const(row));
  }

 private:
  std::size_t split(std::string_view line, Row& row, std::size_t maxFields) const;
  bool readRow(Lines& lines, Row& row) const;

  std::string text_;
  std::size_t firstRow_ = 0;  // where the line after the heading begins
  std::size_t linesBefore_ = 0;
  std::vector<std::string> names_;
  char separator_ = ',';
};

}  // namespace gavrel
