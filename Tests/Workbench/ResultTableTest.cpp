#include "Workbench/ResultTable.h"

#include <gmock/gmock.h>

#include <array>
#include <limits>

#include "Tests/Structures.h"

using namespace gavrel;

namespace {

using testing::ElementsAre;

/// Bars of the lengths 5, 3 and 4 from node 0, and a beam of the length 6.
struct Tables : testing::Test {
  ProjectViewModel model;
  ResultTable nodes, elements;

  Tables() {
    auto project = std::make_shared<Project>();
    for (const double x : {0.0, 5.0, 3.0, -4.0, 6.0}) project->addNode({x, 0, 0});
    for (const std::int64_t end : {1, 2, 3}) addBar(*project, 0, end, 1);
    addBeam(*project, 0, 4, 7, false);
    model.restore(std::move(project), {});
    model.announceResults();
    elements.setProperty("showsElements", true);
    for (ResultTable* table : {&nodes, &elements}) {
      table->setProjectViewModel(&model);
      table->setActive(true);
    }
  }

  static std::vector<std::int64_t> order(const ResultTable& table) {
    std::vector<std::int64_t> positions;
    for (int row = 0; row < table.rowCount(); ++row) positions.push_back(table.positionAt(row));
    return positions;
  }

  static int column(const ResultTable& table, const QString& name) {
    int found = 0;
    while (table.headerData(found, Qt::Horizontal) != name) ++found;
    return found;
  }
};

TEST_F(Tables, SortByAnyColumnAndPutWhatIsEmptyLast) {
  EXPECT_THAT(order(elements), ElementsAre(0, 1, 2, 3));
  elements.sortBy(column(elements, "length"));
  EXPECT_THAT(order(elements), ElementsAre(1, 2, 0, 3));
  EXPECT_FALSE(elements.descending());
  EXPECT_EQ(elements.findRow(0), 2);
  elements.sortBy(column(elements, "length"));
  EXPECT_THAT(order(elements), ElementsAre(3, 0, 2, 1));
  EXPECT_TRUE(elements.descending());
  elements.sortBy(column(elements, "kind"));
  EXPECT_THAT(order(elements), ElementsAre(0, 1, 2, 3)) << "equals stay in the project's order";
  EXPECT_FALSE(elements.descending());
  elements.sortBy(column(elements, "kind"));
  EXPECT_THAT(order(elements), ElementsAre(3, 0, 1, 2));

  auto& trusses = (*model.project)->trussElements.edit();
  trusses[0].currentStrain = std::numeric_limits<double>::quiet_NaN();
  trusses[1].currentStrain = -1;
  elements.sortBy(column(elements, "strain"));
  EXPECT_THAT(order(elements), ElementsAre(1, 2, 0, 3));
  elements.sortBy(column(elements, "strain"));
  EXPECT_THAT(order(elements), ElementsAre(2, 1, 0, 3));
  elements.sortBy(column(elements, "shearModulus"));
  EXPECT_THAT(order(elements), ElementsAre(3, 0, 1, 2));
}

TEST_F(Tables, FindElementsByIdentifiersThatAreNotPositions) {
  auto& trusses = (*model.project)->trussElements.edit();
  for (auto& truss : trusses) truss.id = std::array{2, 10, 0}[static_cast<std::size_t>(truss.id)];
  (*model.project)->beamElements.edit()[0].id = 1;
  elements.sortBy(column(elements, "length"));
  ASSERT_THAT(order(elements), ElementsAre(1, 2, 0, 3));
  const auto rows = [this](bool isBeam) {
    std::vector<int> found;
    for (const int identifier : {0, 1, 2, 10}) found.push_back(elements.findElementRow(isBeam, identifier));
    return found;
  };
  EXPECT_THAT(rows(false), ElementsAre(1, -1, 2, 0));
  EXPECT_THAT(rows(true), ElementsAre(-1, 3, -1, -1));
}

TEST_F(Tables, SearchWhatIsShownWhateverItsCase) {
  elements.setSearch("BEAM");
  EXPECT_THAT(order(elements), ElementsAre(3));
  EXPECT_EQ(elements.size(), 4);
  EXPECT_EQ(elements.findRow(0), -1);
  elements.setSearch("0.0");
  EXPECT_THAT(order(elements), ElementsAre()) << "zeros are shown as 0";
  elements.setSearch("");
  EXPECT_EQ(elements.rows(), 4);
  int arranged = 0;
  QObject::connect(&elements, &ResultTable::arranged, [&arranged] { ++arranged; });
  elements.setSearch("");
  EXPECT_EQ(arranged, 0);
}

TEST_F(Tables, ShowSixDigitsAndTextsAsTheyAre) {
  auto& X = (*model.project)->X_I.edit();
  X[0] = -0.0;
  X[1] = 2e7 / 3;
  X[2] = std::numeric_limits<double>::infinity();
  clamp(**model.project, 0);
  const auto cell = [this](int column) { return nodes.data(nodes.index(0, column)).toString(); };
  EXPECT_EQ((QStringList{cell(0), cell(1), cell(2), cell(3)}), (QStringList{"0", "0", "6.66667e+06", "inf"}));
  EXPECT_EQ(cell(column(nodes, "held")), "x y z rx ry rz");
  EXPECT_EQ(nodes.columnCount(), 17);
  EXPECT_EQ(nodes.columnCount(nodes.index(0, 0)) + nodes.rowCount(nodes.index(0, 0)), 0);
  EXPECT_FALSE(nodes.data({}).isValid() || nodes.data(nodes.index(0, 0), Qt::EditRole).isValid());
  EXPECT_FALSE(nodes.headerData(0, Qt::Vertical).isValid() || nodes.headerData(0, Qt::Horizontal, 99).isValid());
  for (const auto& [table, texts] : {std::pair(&nodes, QStringList{"held"}), {&elements, {"kind", "state"}}}) {
    for (int i = 0; i < table->columnCount(); ++i)
      EXPECT_EQ(table->holdsNumbers(i), !texts.contains(table->headerData(i, Qt::Horizontal).toString())) << i;
  }
}

TEST_F(Tables, MarkTheNodeOrElementOfARow) {
  nodes.mark(2);
  EXPECT_THAT(model.marks().nodes, ElementsAre(2));
  elements.sortBy(column(elements, "length"));
  elements.mark(0);
  EXPECT_THAT(model.marks().trusses, ElementsAre(1));
  EXPECT_TRUE(model.marks().nodes.empty());
  elements.mark(3);
  EXPECT_THAT(model.marks().beams, ElementsAre(0));
  EXPECT_TRUE(model.marks().trusses.empty());
}

TEST_F(Tables, FollowTheProjectWhileTheyAreActive) {
  model.addNode(1, 1, 1, true);
  EXPECT_EQ(nodes.rows(), 6);
  EXPECT_EQ(elements.rows(), 5);
  nodes.setActive(false);
  EXPECT_EQ(nodes.rows(), 0);
  EXPECT_EQ(nodes.size(), 6);
  int arranged = 0;
  QObject::connect(&nodes, &ResultTable::arranged, [&arranged] { ++arranged; });
  model.addNode(1, 1, 2, true);
  EXPECT_EQ(arranged, 0);
  EXPECT_EQ(ResultTable().size(), 0);
}

}  // namespace
