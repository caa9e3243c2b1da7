#include <gmock/gmock.h>

#include "Exchange/Import.h"
#include "Tests/Near.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

using testing::ElementsAre;

/// The contents of blocks, and then the entities; a space separates each line from the next.
std::string drawingOf(const std::string& blocks, const std::string& entities) {
  std::string text = "0 SECTION 2 BLOCKS " + blocks + "0 ENDSEC 0 SECTION 2 ENTITIES " + entities + " 0 ENDSEC 0 EOF ";
  std::ranges::replace(text, ' ', '\n');
  return text;
}

struct Imported {
  std::vector<Vector3> ends = {};  // of all bars, one after the other
  std::vector<std::string> remarks = {};
  std::string reason = {};
};

Imported import(const std::string& blocks, const std::string& entities) {
  const TemporaryFolder folder;
  Project project;
  const auto outcome = importFiles(project, {folder.put("a.dxf", drawingOf(blocks, entities))},
                                   {.tolerance = 1e-9, .maxLinesOfBlocks = 1000});
  if (!outcome) return {.reason = outcome.failure().reason};
  Imported imported{.remarks = outcome->remarks};
  for (const TrussElement& bar : *project.trussElements)
    for (const std::int64_t node : {bar.startNodeId, bar.endNodeId})
      imported.ends.push_back(*project.getNodeCoordinates(node));
  return imported;
}

/// From the base point to (2, 1, 0.5) from there.
const std::string lineBlock = "0 BLOCK 2 Line 10 1 20 -1 30 8 0 LINE 67 1 10 1 20 -1 30 8 11 3 21 0 31 8.5 0 ENDBLK ";

}  // namespace

TEST(DxfBlocks, PlacesTheLinesOfABlock) {
  const std::pair<const char*, std::vector<Vector3>> cases[] = {
      {"43 1", {{5, 6, 7}, {7, 7, 7.5}}},
      {"50 90", {{5, 6, 7}, {4, 8, 7.5}}},
      {"50 -540", {{5, 6, 7}, {3, 5, 7.5}}},
      {"41 2 42 -1 43 4", {{5, 6, 7}, {9, 5, 9}}},
      {"41 2 42 -1 50 90", {{5, 6, 7}, {6, 10, 7.5}}},
      {"230 -1", {{-5, 6, -7}, {-7, 7, -7.5}}},
      {"210 3 230 0", {{7, 5, 6}, {7.5, 7, 7}}},
      {"210 1e300 230 0 50 90", {{7, 5, 6}, {7.5, 4, 8}}},
      {"70 2 44 10 71 0", {{5, 6, 7}, {7, 7, 7.5}, {15, 6, 7}, {17, 7, 7.5}}},
      {"71 2 45 10 41 2 50 90", {{5, 6, 7}, {4, 10, 7.5}, {-5, 6, 7}, {-6, 10, 7.5}}}};
  for (const auto& [groups, ends] : cases)
    EXPECT_EQ(import(lineBlock, "0 INSERT 2 LINE 10 5 20 6 30 7 " + std::string(groups)).ends, ends) << groups;
  const auto oblique = import(lineBlock, "0 INSERT 2 line 10 5 20 6 30 7 50 30 210 1 220 2 230 2").ends;
  ASSERT_EQ(oblique.size(), 2);
  expectNear(oblique[0], {-3.927657003666078, 3.325025880166792, 9.138802621666246}, 1e-14);
  expectNear(oblique[1], {-5.419311366729554, 3.0966665114973635, 10.862989171867412}, 1e-14);
}

TEST(DxfBlocks, PlacesBlocksInBlocks) {
  const std::string nested =
      "0 BLOCK 2 Outer 10 0 20 0 0 CIRCLE 0 INSERT 2 line 10 1 20 0 70 2 44 4 "
      "0 POLYLINE 70 1 0 VERTEX 10 0 20 0 42 1 0 VERTEX 10 0 20 1 0 VERTEX 10 1 20 1 0 SEQEND 0 ENDBLK "
      "0 BLOCK 2 Unused 0 LINE 10 x 0 ENDBLK " +
      lineBlock;
  const auto imported =
      import(nested,
             "0 INSERT 2 OUTER 10 0 20 0 41 2 42 2 0 INSERT 2 OUTER 10 100 20 0 66 1 0 ATTRIB 0 SEQEND "
             "0 LINE 10 0 20 0 11 0 21 0 31 9 0 INSERT 67 1 2 Outer 10 0 20 0 0 INSERT 2 none 10 0 20 0");
  ASSERT_EQ(imported.ends.size(), 22) << imported.reason;
  EXPECT_EQ(imported.ends[1], (Vector3{0, 0, 9}));  // the drawing's own lines come first
  EXPECT_THAT(std::vector(imported.ends.begin() + 2, imported.ends.begin() + 12),
              ElementsAre(Vector3{}, Vector3{0, 2, 0}, Vector3{0, 2, 0}, Vector3{2, 2, 0}, Vector3{2, 2, 0}, Vector3{},
                          Vector3{2, 0, 0}, Vector3{6, 2, 0.5}, Vector3{10, 0, 0}, Vector3{14, 2, 0.5}));
  EXPECT_THAT(imported.remarks, ElementsAre("1 ATTRIB left out: not made of straight lines in space.",
                                            "1 CIRCLE left out: not made of straight lines in space.",
                                            "1 INSERT left out: its block is not in the drawing.",
                                            "1 INSERT left out: on the sheet of paper, not in space.",
                                            "1 polylines with arcs: the arcs became straight."));
  const auto elsewhere = import("0 BLOCK 2 a 70 4 0 LINE 10 1 0 ENDBLK ", "0 INSERT 2 a 10 0 20 0");
  EXPECT_THAT(elsewhere.remarks, ElementsAre("1 INSERT left out: its block is in another file."));
}

TEST(DxfBlocks, RefusesWhatHasNoEndOrMakesNoSense) {
  const auto reasonFor = [](const std::string& blocks, const std::string& groups) {
    return import(blocks, "0 INSERT 10 0 20 0 " + groups).reason;
  };
  EXPECT_EQ(
      reasonFor("0 BLOCK 2 a 0 INSERT 2 B 10 0 20 0 0 ENDBLK 0 BLOCK 2 b 0 INSERT 2 A 10 0 20 0 0 ENDBLK ", "2 a"),
      "a.dxf, line 24: the block \"A\" is inserted in itself");
  EXPECT_EQ(reasonFor(lineBlock, "2 line 70 7 71 143"),
            "a.dxf, line 40: with this INSERT, the blocks have more than 1000 lines");
  EXPECT_EQ(reasonFor(lineBlock, "2 line 70 10 71 100"), "");
  EXPECT_NE(reasonFor(lineBlock, "2 line 70 10 71 60 0 INSERT 2 line 10 0 20 0 70 401"), "");
  EXPECT_EQ(reasonFor(lineBlock, "2 line 210 0 230 0"),
            "a.dxf, line 40: the INSERT has an extrusion direction without a usable length");
  EXPECT_EQ(reasonFor(lineBlock, "2 line 41 1e308 44 1e308 70 3"),
            "a.dxf, line 40: the INSERT puts a point further out than numbers reach");
  EXPECT_EQ(reasonFor(lineBlock, "2 line 70 -1"), "a.dxf, line 48: expected a whole number, found \"-1\"");
  EXPECT_EQ(reasonFor(lineBlock, "30 0"), "a.dxf, line 40: the INSERT has no group 2");

  // Each block holds the next one twice, which doubles the lines, or nothing.
  const auto chain = [](int blocks, const std::string& times, const std::string& last) {
    std::string text;
    for (int i = 0; i < blocks; ++i)
      text += "0 BLOCK 2 " + std::to_string(i) + " 0 INSERT 2 " + std::to_string(i + 1) + " 10 0 20 0 44 1 70 " +
              times + " 0 ENDBLK ";
    return text + "0 BLOCK 2 " + std::to_string(blocks) + " " + last + "0 ENDBLK ";
  };
  const std::string line = "0 LINE 10 0 20 0 11 1 21 0 ";
  EXPECT_THAT(reasonFor(chain(60, "2", line), "2 0"), testing::HasSubstr("more than 1000 lines"));
  EXPECT_EQ(reasonFor(chain(60, "2000000000", ""), "2 0"), "");
  EXPECT_EQ(reasonFor(chain(99, "1", line), "2 0"), "");
  EXPECT_THAT(reasonFor(chain(100, "1", line), "2 0"), testing::HasSubstr("more than 100 blocks stand in one another"));
  EXPECT_THAT(import(chain(99, "1", line) + "0 BLOCK 2 x 0 INSERT 2 0 10 0 20 0 0 ENDBLK ",
                     "0 INSERT 2 0 10 0 20 0 0 INSERT 2 x 10 0 20 0")
                  .reason,
              testing::HasSubstr("more than 100 blocks stand in one another"));
}
