#include "Exchange/CsvTable.h"

#include <algorithm>

#include "Exchange/Draft.h"
#include "Platform/ShownText.h"

namespace gavrel {

namespace {

char findSeparator(std::string_view heading) {
  const auto count = [heading](char c) { return std::ranges::count(heading, c); };
  if (count(';') > 0) return ';';
  return count('\t') > count(',') ? '\t' : ',';
}

std::string withoutDoubledMarks(std::string_view quoted) {
  std::string text;
  for (std::size_t i = 0; i < quoted.size(); i += quoted[i] == '"' ? 2 : 1) text += quoted[i];
  return text;
}

}  // namespace

CsvTable::CsvTable(std::string text) : text_(std::move(text)) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  std::string_view content = text_;
  if (content.starts_with(byteOrderMark)) content.remove_prefix(byteOrderMark.size());
  Lines lines(content);
  std::string_view heading;
  while (const auto line = lines.next()) {
    heading = *line;
    if (!trimmed(heading).empty()) break;
  }
  if (trimmed(heading).empty()) throw ImportError("line 1: the file is empty");
  separator_ = findSeparator(heading);
  Row row{lines.number()};
  const std::size_t count = split(heading, row, maxColumns);
  const std::string place = "line " + std::to_string(row.line) + ": ";
  if (count > maxColumns)
    throw ImportError(place + std::to_string(count) + " columns; a table has at most " + std::to_string(maxColumns));
  for (const std::string_view name : row.fields) {
    if (!name.empty() && column(name)) throw ImportError(place + "the column " + shownQuoted(name) + " occurs twice");
    names_.push_back(lower(name));
  }
  firstRow_ = text_.size() - lines.rest().size();
  linesBefore_ = lines.number();
}

std::optional<std::size_t> CsvTable::column(std::string_view name) const {
  const auto found = std::ranges::find(names_, lower(name));
  return found == names_.end() ? std::nullopt : std::optional(static_cast<std::size_t>(found - names_.begin()));
}

bool CsvTable::readRow(Lines& lines, Row& row) const {
  while (const auto line = lines.next()) {
    if (trimmed(*line).empty()) continue;
    row.line = lines.number();
    const std::size_t count = split(*line, row, names_.size());
    if (count != names_.size())
      throw ImportError("line " + std::to_string(row.line) + ": " + std::to_string(count) + " values for " +
                        std::to_string(names_.size()) + " columns");
    return true;
  }
  return false;
}

/// Puts the first `maxFields` values of the line into the row; returns how many there are. A value in quotation marks
/// may hold separators, and marks that are doubled.
std::size_t CsvTable::split(std::string_view line, Row& row, std::size_t maxFields) const {
  row.fields.clear();
  row.unquoted.clear();
  std::size_t count = 0;
  const auto fail = [&](const char* why) {
    const std::string column = count < names_.size() ? ", column " + shownText(names_[count]) : "";
    throw ImportError("line " + std::to_string(row.line) + column + ": " + why);
  };
  constexpr const char* misplaced = "quotation marks must enclose a whole value, and be doubled inside it";
  const auto skipSpace = [&] {
    while (!line.empty() && isSpace(line.front()) && line.front() != separator_) line.remove_prefix(1);
  };
  while (true) {
    std::string_view field;
    bool hasMarks = false;
    skipSpace();
    if (line.starts_with('"')) {
      std::size_t end = line.find('"', 1);
      for (; end != line.npos && line.substr(end).starts_with("\"\""); end = line.find('"', end + 2)) hasMarks = true;
      if (end == line.npos) fail("a quotation mark is not closed");
      field = line.substr(1, end - 1);
      line.remove_prefix(end + 1);
      skipSpace();
      if (!line.empty() && line.front() != separator_) fail(misplaced);
    } else {
      field = line.substr(0, line.find(separator_));
      if (field.find('"') != field.npos) fail(misplaced);
      line.remove_prefix(field.size());
    }
    if (count < maxFields) {
      if (hasMarks) field = row.unquoted.emplace_back(withoutDoubledMarks(field));
      row.fields.push_back(trimmed(field));
    }
    ++count;
    if (line.empty()) return count;
    line.remove_prefix(1);
  }
}

}  // namespace gavrel
