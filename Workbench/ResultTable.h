#pragma once

#include <qqml.h>
#include <QAbstractTableModel>
#include <QPointer>
#include <QString>
#include <span>
#include <vector>

#include "Exchange/TableColumn.h"
#include "PreviewContent/ProjectViewModel.h"

namespace gavrel {

/// The nodes or the elements of the project as a table to sort and search. It follows the project while it is `active`.
/// Sorting and searching change rows; the position of a node or element is its place in the project.
class ResultTable : public QAbstractTableModel {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(gavrel::ProjectViewModel* projectViewModel READ projectViewModel WRITE setProjectViewModel NOTIFY arranged
                 REQUIRED)
  Q_PROPERTY(bool showsElements MEMBER showsElements_ NOTIFY arranged)
  Q_PROPERTY(bool active READ active WRITE setActive NOTIFY arranged)
  Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY arranged)
  Q_PROPERTY(int sortColumn READ sortColumn NOTIFY arranged)
  Q_PROPERTY(bool descending READ descending NOTIFY arranged)
  Q_PROPERTY(int rows READ rows NOTIFY arranged)
  Q_PROPERTY(int size READ size NOTIFY arranged)

 public:
  using QAbstractTableModel::QAbstractTableModel;

  [[nodiscard]] ProjectViewModel* projectViewModel() const { return viewModel_; }
  void setProjectViewModel(ProjectViewModel* value);
  [[nodiscard]] bool active() const { return active_; }
  void setActive(bool value);
  [[nodiscard]] QString search() const { return search_; }
  /// Shows only rows with a cell that contains the text, whatever its case.
  void setSearch(const QString& value);
  [[nodiscard]] int sortColumn() const { return sortColumn_; }
  [[nodiscard]] bool descending() const { return descending_; }
  [[nodiscard]] int rows() const { return static_cast<int>(positions_.size()); }
  [[nodiscard]] int size() const;  ///< number of rows if nothing is searched for

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                    int role = Qt::DisplayRole) const override;
  [[nodiscard]] QHash<int, QByteArray> roleNames() const override;
  /// Whether the column is aligned to the right.
  [[nodiscard]] Q_INVOKABLE bool holdsNumbers(int column) const;
  [[nodiscard]] Q_INVOKABLE int columnWidth(int column) const { return columnAt(column).width; }  ///< in pixels

  /// Sorts by a column, or reverses the order if it is the sort column. Empty cells and those that are not a number
  /// come last.
  Q_INVOKABLE void sortBy(int column);
  [[nodiscard]] Q_INVOKABLE qint64 positionAt(int row) const { return positions_[static_cast<std::size_t>(row)]; }
  /// The row of the node or element at this position; -1 if it is not shown.
  [[nodiscard]] Q_INVOKABLE int findRow(qint64 position) const;
  /// The row of the first bar or beam with this identifier, which need not be its position; -1 if it is not shown.
  [[nodiscard]] Q_INVOKABLE int findElementRow(bool isBeam, qint64 identifier) const;
  /// Highlights the row's node or element in the 3D area.
  Q_INVOKABLE void mark(int row) const;

 signals:
  void arranged();

 private:
  [[nodiscard]] const Project& project() const { return **viewModel_->project; }
  [[nodiscard]] std::span<const TableColumn> columns() const {
    return showsElements_ ? elementColumns() : nodeColumns();
  }
  [[nodiscard]] const TableColumn& columnAt(int column) const { return columns()[static_cast<std::size_t>(column)]; }
  [[nodiscard]] QString textAt(std::int64_t position, int column) const;
  /// The cell's value; empty for results before the project was solved.
  [[nodiscard]] Cell cellAt(std::int64_t position, const TableColumn& column) const;
  void arrange();
  void sortPositions();

  QPointer<ProjectViewModel> viewModel_;
  bool showsElements_ = false;
  bool active_ = false;
  QString search_;
  int sortColumn_ = -1;  // -1: in the order of the project
  bool descending_ = false;
  std::vector<std::int64_t> positions_;  // of each row
};

}  // namespace gavrel
