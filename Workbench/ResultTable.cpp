#include "Workbench/ResultTable.h"

#include <QtConcurrentFilter>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numeric>

namespace gavrel {

namespace {

/// In lower case, because searches ignore case.
std::string shownText(const Cell& cell) {
  constexpr int shownDigits = 6;
  const auto* number = std::get_if<double>(&cell);
  if (number == nullptr || !std::isfinite(*number)) return formatCell(cell);
  std::array<char, 32> text{};
  const double shown = *number + 0.0;  // without the sign of a negative zero
  char* const end = std::to_chars(text.begin(), text.end(), shown, std::chars_format::general, shownDigits).ptr;
  return {text.begin(), end};
}

}  // namespace

void ResultTable::setProjectViewModel(ProjectViewModel* value) {
  viewModel_ = value;
  connect(value, &ProjectViewModel::projectChanged, this, &ResultTable::arrange);
  connect(value, &ProjectViewModel::resultsChanged, this, &ResultTable::arrange);
  arrange();
}

void ResultTable::setActive(bool value) {
  active_ = value;
  arrange();
}

void ResultTable::setSearch(const QString& value) {
  if (value == search_) return;
  search_ = value;
  arrange();
}

int ResultTable::size() const {
  if (!viewModel_) return 0;
  return static_cast<int>(showsElements_ ? elementCount(project()) : project().nodeCount());
}

int ResultTable::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows();
}

int ResultTable::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(columns().size());
}

QVariant ResultTable::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || role != Qt::DisplayRole) return {};
  return textAt(positionAt(index.row()), index.column());
}

QVariant ResultTable::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return QString::fromUtf8(columnAt(section).name);
}

QHash<int, QByteArray> ResultTable::roleNames() const {
  return {{Qt::DisplayRole, "display"}};
}

bool ResultTable::holdsNumbers(int column) const {
  return columnAt(column).content != TableColumn::Content::text;
}

void ResultTable::sortBy(int column) {
  descending_ = column == sortColumn_ && !descending_;
  sortColumn_ = column;
  arrange();
}

int ResultTable::findElementRow(bool isBeam, qint64 identifier) const {
  const auto rowOfFirst = [&](const auto& elements, qint64 before) {
    using Element = typename std::decay_t<decltype(elements)>::value_type;
    const auto found = std::ranges::find(elements, identifier, &Element::id);
    return found == elements.end() ? -1 : findRow(before + (found - elements.begin()));
  };
  const auto& trusses = *project().trussElements;
  return isBeam ? rowOfFirst(*project().beamElements, std::ssize(trusses)) : rowOfFirst(trusses, 0);
}

void ResultTable::mark(int row) const {
  const std::int64_t position = positionAt(row);
  const auto trusses = std::ssize(*project().trussElements);
  if (!showsElements_)
    viewModel_->setMarks({.nodes = {position}});
  else if (position < trusses)
    viewModel_->setMarks({.trusses = {position}});
  else
    viewModel_->setMarks({.beams = {position - trusses}});
}

QString ResultTable::textAt(std::int64_t position, int column) const {
  return QString::fromStdString(shownText(cellAt(position, columnAt(column))));
}

Cell ResultTable::cellAt(std::int64_t position, const TableColumn& column) const {
  return column.origin == TableColumn::Origin::result && !viewModel_->hasResults() ? Cell{}
                                                                                   : column.cell(project(), position);
}

int ResultTable::findRow(qint64 position) const {
  const auto found = std::ranges::find(positions_, position);
  return found == positions_.end() ? -1 : static_cast<int>(found - positions_.begin());
}

void ResultTable::arrange() {
  if (!active_ && positions_.empty()) return;
  beginResetModel();
  positions_.resize(active_ ? static_cast<std::size_t>(size()) : 0);
  std::iota(positions_.begin(), positions_.end(), std::int64_t{0});
  if (!search_.isEmpty())
    QtConcurrent::blockingFilter(positions_, [this, sought = search_.toLower().toStdString()](std::int64_t position) {
      return std::ranges::any_of(columns(), [&](const TableColumn& column) {
        return shownText(cellAt(position, column)).find(sought) != std::string::npos;
      });
    });
  if (sortColumn_ >= 0) sortPositions();
  endResetModel();
  emit arranged();
}

void ResultTable::sortPositions() {
  struct Key {
    Cell cell;
    std::int64_t position;

    [[nodiscard]] bool isLast() const {
      const auto* number = std::get_if<double>(&cell);
      return cell.index() == 0 || (number != nullptr && std::isnan(*number));
    }
  };
  std::vector<Key> keys;
  keys.reserve(positions_.size());
  for (const std::int64_t position : positions_) keys.push_back({cellAt(position, columnAt(sortColumn_)), position});
  std::ranges::stable_sort(keys, [this](const Key& a, const Key& b) {
    if (a.isLast() || b.isLast()) return !a.isLast() && b.isLast();
    return descending_ ? b.cell < a.cell : a.cell < b.cell;
  });
  std::ranges::transform(keys, positions_.begin(), &Key::position);
}

}  // namespace gavrel
