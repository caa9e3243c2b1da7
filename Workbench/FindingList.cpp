#include "Workbench/FindingList.h"

#include <utility>

#include "Platform/Fatal.h"

namespace gavrel {

void FindingList::setFindings(std::vector<Finding> value) {
  beginResetModel();
  findings_ = std::move(value);
  endResetModel();
  emit countChanged();
}

const Finding& FindingList::finding(int row) const {
  return at(findings_, row, "the findings");
}

int FindingList::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : count();
}

QVariant FindingList::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Finding& shown = finding(index.row());
  switch (role) {
    case ConsequenceRole: {
      const std::string_view consequence = describeConsequence(shown.consequence);
      return QString::fromUtf8(consequence);
    }
    case EndsProgramRole:
      return shown.consequence == Finding::Consequence::EndsProgram;
    case IsSeriousRole:
      return isSerious(shown);
    case TitleRole:
      return QString::fromStdString(shown.title);
    case TextRole:
      return QString::fromStdString(shown.text);
    case CanMakeLinearRole:
      return !shown.trussesToMakeLinear.empty();
    default:
      return {};
  }
}

QHash<int, QByteArray> FindingList::roleNames() const {
  return {{ConsequenceRole, "consequence"},
          {EndsProgramRole, "endsProgram"},
          {IsSeriousRole, "isSerious"},
          {TitleRole, "title"},
          {TextRole, "text"},
          {CanMakeLinearRole, "canMakeLinear"}};
}

}  // namespace gavrel
