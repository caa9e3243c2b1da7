#include "PreviewContent/SceneContents.h"

#include <gmock/gmock.h>

#include <QCoreApplication>

#include "Tests/PreviewContent/SceneArea.h"

using namespace gavrel;

namespace {

/// One row of a table: where the mesh's origin and unit vectors go, and its colour.
struct Drawn {
  Vector3 place, x, y, z;
  Color color;
  double stretch;
};

std::vector<Drawn> readRows(InstanceTable& table) {
  int count = 0;
  const QByteArray bytes = table.instanceBuffer(&count);
  std::vector<Drawn> rows;
  for (int i = 0; i < count; ++i) {
    QQuick3DInstancing::InstanceTableEntry entry;
    std::memcpy(&entry, bytes.constData() + i * qsizetype(sizeof(entry)), sizeof(entry));
    const auto column = [&entry](int k) { return Vector3{entry.row0[k], entry.row1[k], entry.row2[k]}; };
    rows.push_back({column(3), column(0), column(1), column(2),
                    Color{entry.color[0], entry.color[1], entry.color[2], entry.color[3]}, entry.instanceData[0]});
  }
  EXPECT_EQ(table.size(), count);
  return rows;
}

void expectColor(const Color& actual, const Color& expected) {
  expectNear({actual.red, actual.green, actual.blue}, {expected.red, expected.green, expected.blue});
  EXPECT_EQ(actual.alpha, 1);
}

/// Turns events until there are none.
int updatesIn(SceneContents& contents, const std::function<void()>& change) {
  int updates = 0;
  const auto connection = QObject::connect(&contents, &SceneContents::updated, [&updates] { ++updates; });
  change();
  EXPECT_EQ(updates, 0) << "not before control is back";
  QCoreApplication::processEvents();
  QObject::disconnect(connection);
  return updates;
}

TEST(SceneContents, TablesHoldEveryShapeAroundTheMiddleOfTheNodes) {
  SceneArea area;
  area.project().setLoadAndRestraint(0, {0, 0, -7}, true, false, false);
  area.contents.update();
  expectNear(area.contents.origin(), {2, 7, 0}, 1e-12);
  const auto balls = readRows(*area.contents.balls());
  ASSERT_EQ(balls.size(), 3U);
  expectNear(balls[1].place, {2, -2, 0});
  expectNear(balls[1].x, {0.1, 0, 0});
  expectNear(balls[1].y, {0, 0.1, 0});
  expectNear(balls[1].z, {0, 0, 0.1});
  expectColor(balls[1].color, {0, 0, 1, 1});
  const auto tubes = readRows(*area.contents.tubes());
  ASSERT_EQ(tubes.size(), 3U) << "bar, beam and the shaft of the load, but none of the restraint";
  expectNear(tubes[0].place, {0, -2, 0});
  EXPECT_NEAR(std::abs(tubes[0].y.x), 4, 1e-5);
  EXPECT_NEAR(length(tubes[0].x), 0.05, 1e-6);
  EXPECT_NEAR(length(tubes[0].z), 0.05, 1e-6);
  EXPECT_NEAR(tubes[0].stretch, 0.05, 1e-6);
  expectColor(tubes[1].color, {1, 0.5, 0, 1});
  const auto cones = readRows(*area.contents.cones());
  ASSERT_EQ(cones.size(), 2U);
  expectNear(cones[0].place, {-2, -2, -1});  // of the load, which is drawn with a length of 1
  expectNear(cones[0].y, {0, 0, -0.3});
  EXPECT_NEAR(length(cones[0].x), 0.1, 1e-6);
  // From the restraint's cone at x = -0.3 to node 1, from the bar to node 2, from the load's cone at z = -1 to nodes.
  expectNear(area.contents.bounds().low, {-0.6, 4.7, -1.3});
  expectNear(area.contents.bounds().high, {4.1, 9.1, 0.3});
  EXPECT_EQ(area.contents.shapeCentres().size(), 3U + 2 + 2 + 2);
  EXPECT_EQ(area.contents.background(), QColor::fromRgbF(0.5F, 0.5F, 0.5F));
}

TEST(SceneContents, ClicksSelectAndTellWhatWasHit) {
  SceneArea area;
  area.project().trussElements.edit()[0].id = 27;
  area.contents.update();
  const double half = 2 * area.pixels;
  const struct {
    double right, up;
    QStringList told;
  } cases[] = {{0, 0, {"element 0", "node 0", "clicked 0"}},
               {half, 0, {"element 7", "element 27", "clicked bar 27"}},
               {half, half, {"element 0", "element 0", "clicked beam 0"}},
               {-half, 0, {"node none", "element none"}}};
  for (const auto& [right, up, told] : cases) {
    area.told.clear();
    area.camera.click(area.middleX + right, area.middleY - up);
    EXPECT_EQ(area.told, told) << right << ' ' << up;
  }
  area.model.setAppMode(AppMode::addingTruss);
  area.camera.click(area.middleX, area.middleY);
  EXPECT_THAT(*area.model.selectedNodesForTruss, testing::ElementsAre(0));
}

TEST(SceneContents, PointsOutWhatIsUnderThePointerAndWhatIsMarked) {
  SceneArea area;
  area.project().setLoadAndRestraint(0, {-7, 0, 0}, false, false, false);
  area.contents.update();
  auto& ball = *area.contents.highlightedBall();
  auto& tube = *area.contents.highlightedTube();
  const auto shown = [&] { return std::pair(ball.size(), tube.size()); };
  EXPECT_TRUE(area.camera.hover(area.middleX, area.middleY));
  EXPECT_EQ(shown(), std::pair(1, 0));
  const Drawn light = readRows(ball)[0];
  expectNear(light.place, {-2, -2, 0});
  expectNear({light.x.x, light.y.y, light.z.z}, {0.105, 0.105, 0.105});
  expectColor(light.color, {0.55, 0.55, 1, 1});
  EXPECT_TRUE(area.camera.hover(area.middleX + area.pixels, area.middleY));
  EXPECT_EQ(shown(), std::pair(0, 1));
  EXPECT_NEAR(std::abs(readRows(tube)[0].y.x), 4, 1e-5) << "thicker, but not longer";
  EXPECT_NEAR(length(readRows(tube)[0].x), 0.0525, 1e-6);
  EXPECT_NEAR(length(readRows(tube)[0].z), 0.0525, 1e-6);
  EXPECT_FALSE(area.camera.hover(area.middleX - area.pixels, area.middleY)) << "a load cannot be picked";
  EXPECT_EQ(shown(), std::pair(0, 0));
  area.camera.hover(area.middleX, area.middleY);
  area.contents.clearHighlight();
  EXPECT_EQ(shown(), std::pair(0, 0));
  area.camera.hover(area.middleX, area.middleY);
  area.contents.update();
  EXPECT_EQ(shown(), std::pair(0, 0)) << "the shape may be gone";

  area.model.setMarks({.nodes = {2}, .trusses = {0}, .beams = {0}});
  const auto balls = readRows(*area.contents.markedBalls());
  ASSERT_EQ(balls.size(), 1U);
  expectNear(balls[0].place, {-2, 2, 0});
  EXPECT_NEAR(balls[0].y.y, 0.16, 1e-6);
  expectColor(balls[0].color, {1, 0, 0.85, 1});
  EXPECT_EQ(area.contents.markedTubes()->size(), 2);
  area.project().addNode({8, 8, 8});
  area.model.setMarks({.nodes = {3}});
  EXPECT_EQ(area.contents.markedTubes()->size(), 2) << "shown by the update that is due";
  QCoreApplication::processEvents();
  EXPECT_EQ(area.contents.markedTubes()->size(), 0);
  EXPECT_EQ(area.contents.markedBalls()->size(), 1);
}

TEST(SceneContents, AnyNumberOfChangesLeadsToOneUpdate) {
  SceneArea area;
  QCoreApplication::processEvents();
  SceneContents& contents = area.contents;
  const auto first = *area.model.project;
  EXPECT_EQ(updatesIn(contents, [] {}), 0);
  EXPECT_EQ(updatesIn(contents, [&] { first->name.edit() = "a"; }), 1);
  EXPECT_EQ(updatesIn(contents, [&] { area.model.addNode(1, 1, 1, true), area.model.setAppMode(AppMode::addingBeam); }),
            1);
  EXPECT_EQ(contents.balls()->size(), 4);
  EXPECT_EQ(updatesIn(contents, [&] { contents.setProperty("displacementMagnification", 3); }), 1);
  EXPECT_EQ(updatesIn(contents, [&] { contents.setProperty("paused", true), area.model.addNode(2, 1, 1, false); }), 0);
  EXPECT_EQ(contents.balls()->size(), 4);
  EXPECT_EQ(updatesIn(contents, [&] { contents.setProperty("paused", false); }), 1);
  EXPECT_EQ(contents.balls()->size(), 5);
  first->name.edit() = "b";
  contents.update();
  EXPECT_EQ(updatesIn(contents, [] {}), 0) << "what was due has been done";

  // Neither a former project nor a former view model matters any more.
  area.model.newProject();
  QCoreApplication::processEvents();
  EXPECT_EQ(updatesIn(contents, [&] { first->name.edit() = "c"; }), 0);
  ProjectViewModel other;
  EXPECT_EQ(updatesIn(contents, [&] { contents.setProjectViewModel(&other); }), 1);
  EXPECT_EQ(updatesIn(contents, [&] { area.model.setAppMode(AppMode::normal); }), 0);
}

TEST(SceneContents, MayGoBeforeTheModelThatItWatches) {
  SceneArea area;
  {
    SceneContents contents;
    contents.setProjectViewModel(&area.model);
    contents.update();
  }
  area.project().name.edit() = "a";
  area.model.setAppMode(AppMode::addingBeam);
}

TEST(SceneContents, LegendRunsFromTheLargestStrainToTheSmallest) {
  SceneArea area;
  auto& trusses = area.project().trussElements.edit();
  trusses.push_back(trusses[0]);
  trusses[0].dUx = -0.04;  // X = -4
  trusses[1].dUx = 0.08;
  const QVariantMap legend = area.contents.strainLegend();
  EXPECT_TRUE(legend["shown"].toBool());
  EXPECT_DOUBLE_EQ(legend["min"].toDouble(), -0.01);
  EXPECT_DOUBLE_EQ(legend["max"].toDouble(), 0.02);
  const QVariantList colors = legend["colors"].toList();
  ASSERT_EQ(colors.size(), 17);
  EXPECT_EQ(colors.first().value<QColor>(), QColor::fromRgbF(1, 0.2F, 0.2F));
  EXPECT_EQ(colors.last().value<QColor>(), QColor::fromRgbF(0, 0.4F, 1));
  // A strain of 0.02 - 8/16 · 0.03 = 0.005, a quarter of the way from grey to red.
  const auto middle = colors[8].value<QColor>();
  EXPECT_NEAR(middle.redF(), 0.925, 1e-4);
  EXPECT_NEAR(middle.greenF(), 0.725, 1e-4);
  trusses.clear();
  EXPECT_FALSE(area.contents.strainLegend()["shown"].toBool());
  EXPECT_FALSE(SceneContents().strainLegend()["shown"].toBool());
}

TEST(SceneContents, TheAxisWithTheGreaterSumOfLoadsIsUpright) {
  SceneArea area;
  auto& F = area.project().F_I.edit();
  EXPECT_FALSE(area.contents.loadsActAlongZ()) << "no load";
  F = {9, 3, -4, 0, 0, 0, 0, -1, 0, 0, 9, 0};
  EXPECT_FALSE(area.contents.loadsActAlongZ()) << "equal";
  F[8] = -1;
  EXPECT_TRUE(area.contents.loadsActAlongZ());
  F[7] = 3;
  EXPECT_FALSE(area.contents.loadsActAlongZ());
}

}  // namespace
