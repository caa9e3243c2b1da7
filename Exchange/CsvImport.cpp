#include <algorithm>
#include <charconv>
#include <cmath>
#include <span>
#include <sstream>

#include "Exchange/Draft.h"
#include "Exchange/TableColumn.h"
#include "Platform/NumberText.h"
#include "Platform/ShownText.h"

namespace gavrel {

namespace {

/// Reads the fields of one row by the names of their columns.
class Reader {
 public:
  Reader(const CsvTable& table, const CsvTable::Row& row) : table_(table), row_(row) {}

  /// The text in a column; empty without that column.
  [[nodiscard]] std::string_view text(std::string_view name) const {
    const auto column = table_.column(name);
    return column ? row_.fields[*column] : std::string_view();
  }

  [[nodiscard]] double number(std::string_view name, std::optional<double> otherwise) const {
    std::string field(text(name));
    if (field.empty() && otherwise) return *otherwise;
    if (table_.separator() != ',') std::ranges::replace(field, ',', '.');
    const auto number = parseNumber(field);
    if (!number || !std::isfinite(*number)) fail(name, "expected a number, found " + shownQuoted(text(name)));
    return *number;
  }

  [[nodiscard]] std::int64_t whole(std::string_view name) const {
    const std::string_view field = text(name);
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), number);
    if (error != std::errc() || end != field.data() + field.size() || number < 0)
      fail(name, "expected the number of a node, found " + shownQuoted(field));
    return number;
  }

  [[nodiscard]] std::string place(std::string_view name) const {
    return "line " + std::to_string(row_.line) + ", column " + std::string(name);
  }
  [[noreturn]] void fail(std::string_view name, const std::string& what) const {
    throw ImportError(place(name) + ": " + what);
  }

 private:
  const CsvTable& table_;
  const CsvTable::Row& row_;
};

/// Whether its comma may as well group thousands, as in "1,234".
bool mayGroupThousands(std::string_view field) {
  constexpr std::size_t group = 3;
  const std::size_t comma = field.find(',');
  const std::string_view after = field.substr(comma + 1);
  std::string_view before = field.substr(0, comma);
  if (before.starts_with('+') || before.starts_with('-')) before.remove_prefix(1);
  const auto areDigits = [](std::string_view text) { return text.find_first_not_of("0123456789") == text.npos; };
  return areDigits(before) && areDigits(after) && after.size() == group && !before.empty() && before.size() <= group &&
         before.front() != '0';
}

/// In tables that commas do not separate, numbers may have decimal commas instead of points. Throws ImportError if the
/// numbers of the columns that are read have both, or if all their commas may as well group thousands.
void requireOneDecimalMark(const CsvTable& table, std::span<const TableColumn> columns) {
  if (table.separator() == ',') return;
  std::string pointAt;
  std::string commaAt;
  std::string doubtfulAt;
  bool isDecimal = table.separator() == ';';  // programs write semicolons where the comma is the decimal mark
  table.forEachRow([&](const CsvTable::Row& row) {
    const Reader reader(table, row);
    for (const auto& [name, content, origin, width, cell] : columns) {
      if (content != TableColumn::Content::numbers || origin != TableColumn::Origin::input) continue;
      const std::string_view field = reader.text(name);
      const bool hasComma = field.find(',') != field.npos;
      if (hasComma && commaAt.empty()) commaAt = reader.place(name);
      if (hasComma && !mayGroupThousands(field)) isDecimal = true;
      if (hasComma && doubtfulAt.empty()) doubtfulAt = field;
      if (field.find('.') != field.npos && pointAt.empty()) pointAt = reader.place(name);
    }
  });
  if (commaAt.empty()) return;
  if (!pointAt.empty())
    throw ImportError(commaAt + ": a number has a comma, but one has a point in " + pointAt +
                      "; a table has one decimal mark");
  if (!isDecimal)
    throw ImportError(commaAt + ": the comma of " + shownQuoted(doubtfulAt) +
                      " may mark decimals or thousands; use a point or none");
}

std::array<bool, dofsPerNode> readRestraints(const Reader& reader) {
  std::array<bool, dofsPerNode> restrained{};
  std::istringstream words(lower(reader.text("held")));
  for (std::string word; words >> word;) {
    const auto found = std::ranges::find(heldWords, word);
    if (found == heldWords.end()) reader.fail("held", shownQuoted(word) + " is none of x, y, z, rx, ry, rz");
    restrained[static_cast<std::size_t>(found - heldWords.begin())] = true;
  }
  return restrained;
}

/// The node with this number in the table of nodes or, without one, in the project.
std::int64_t readNode(const Draft& draft, const Reader& reader, std::string_view name) {
  const std::int64_t number = reader.whole(name);
  if (draft.numbers) {
    const auto found = draft.numbers->find(number);
    if (found != draft.numbers->end()) return found->second;
  } else if (number < draft.nodeCount()) {
    return number;
  }
  reader.fail(name, "there is no node " + std::to_string(number));
}

/// Sets what the words in the column "kind" say, which are those that exportElements writes.
void readKind(const Reader& reader, Draft::Element& element) {
  const std::string kind = lower(reader.text("kind"));
  if (kind.empty()) return;
  element.isNonLinear = false;
  std::istringstream words(kind);
  for (std::string word; words >> word;) {
    if (word == "beam")
      element.isBeam = true;
    else if (word == "non-linear")
      element.isNonLinear = true;
    else if (word == "compression-only")
      element.isCompressionOnly = true;
    else if (word != "bar")
      reader.fail("kind", shownQuoted(word) + " is none of bar, beam, non-linear, compression-only");
  }
}

/// Adds a remark for each column that is not read, except for those of exported tables.
void remarkOnUnknown(const CsvTable& table, std::span<const TableColumn> known, Draft& draft) {
  for (const std::string& name : table.names())
    if (!name.empty() && std::ranges::none_of(known, [&](const auto& column) { return lower(column.name) == name; }))
      draft.remarks.push_back("The column " + shownQuoted(name) + " is not read.");
}

}  // namespace

void addNodes(const CsvTable& table, Draft& draft) {
  requireOneDecimalMark(table, nodeColumns());
  const bool numbered = table.column("node").has_value();
  if (!draft.numbers) draft.numbers.emplace();
  table.forEachRow([&](const CsvTable::Row& row) {
    const Reader reader(table, row);
    const std::int64_t number = numbered ? reader.whole("node") : std::ssize(*draft.numbers);
    if (!draft.numbers->emplace(number, draft.nodeCount()).second)
      reader.fail("node", "the number " + std::to_string(number) + " occurs twice");
    draft.nodes.push_back({{reader.number("x", {}), reader.number("y", {}), reader.number("z", 0)},
                           {reader.number("Fx", 0), reader.number("Fy", 0), reader.number("Fz", 0),
                            reader.number("Mx", 0), reader.number("My", 0), reader.number("Mz", 0)},
                           readRestraints(reader)});
  });
  remarkOnUnknown(table, nodeColumns(), draft);
}

void addElements(const CsvTable& table, Draft& draft) {
  requireOneDecimalMark(table, elementColumns());
  table.forEachRow([&](const CsvTable::Row& row) {
    const Reader reader(table, row);
    Draft::Element element{.start = readNode(draft, reader, "start"), .end = readNode(draft, reader, "end")};
    element.isNonLinear = draft.settings.isNonLinear;
    readKind(reader, element);
    element.area = reader.number("area", draft.settings.area);
    element.youngModulus = reader.number("youngModulus", draft.settings.youngModulus);
    if (element.isBeam) {
      element.shearModulus = reader.number("shearModulus", {});
      element.inertiaY = reader.number("inertiaY", {});
      element.inertiaZ = reader.number("inertiaZ", {});
    }
    draft.elements.push_back(element);
  });
  remarkOnUnknown(table, elementColumns(), draft);
}

}  // namespace gavrel
