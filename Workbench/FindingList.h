#pragma once

#include <qqml.h>
#include <QAbstractListModel>
#include <vector>

#include "Diagnosis/Finding.h"

namespace gavrel {

/// Findings as a list to be shown, with a role for each part of a finding.
class FindingList : public QAbstractListModel {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("A calculation has one.")
  Q_PROPERTY(int count READ count NOTIFY countChanged)

 public:
  enum Role {
    ConsequenceRole = Qt::UserRole,  ///< in words
    EndsProgramRole,
    IsSeriousRole,
    TitleRole,
    TextRole,
    CanMakeLinearRole  ///< whether bars are to be made linear, which would help
  };

  using QAbstractListModel::QAbstractListModel;

  void setFindings(std::vector<Finding> value);
  /// The finding in this row; a row that is not there is fatal.
  [[nodiscard]] const Finding& finding(int row) const;
  [[nodiscard]] int count() const { return static_cast<int>(findings_.size()); }

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

 signals:
  void countChanged();

 private:
  std::vector<Finding> findings_;
};

}  // namespace gavrel
