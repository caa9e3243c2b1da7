#include <gmock/gmock.h>

#include "Exchange/Import.h"
#include "Tests/Structures.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using Ends = std::vector<std::pair<std::int64_t, std::int64_t>>;

Ends readEnds(const Project& project) {
  Ends ends;
  for (const TrussElement& bar : *project.trussElements) ends.emplace_back(bar.startNodeId, bar.endNodeId);
  return ends;
}

/// A drawing with these entities; a space separates each line from the next.
std::string dxf(const std::string& entities) {
  std::string text =
      "0 SECTION 2 BLOCKS 0 LINE 10 99 20 0 0 ENDSEC 0 SECTION 2 ENTITIES " + entities + " 0 ENDSEC 0 EOF ";
  std::ranges::replace(text, ' ', '\n');
  return text;
}

}  // namespace

TEST(Import, AddsTablesToWhatIsThere) {
  const TemporaryFolder folder;
  Project project;
  project.addNode({0, 0, 0});
  project.addNode({1, 0, 0});
  addBar(project, 0, 1, 5);
  const std::string nodes = folder.put("nodes.csv",
                                       "\xEF\xBB\xBFNode;Y;X;Held;Fy;Colour\r\n10;2,5;1;\"x  RZ\";-3;red\r\n\r\n"
                                       "7;0;4,0;;;blue\r\n");
  const std::string members = folder.put("members.csv", "start,end,area,kind\n7,10,,\n10,7,0.5,non-linear bar\n");
  const auto outcome = importFiles(project, {members, nodes}, {.area = 9, .youngModulus = 8, .isNonLinear = true});
  ASSERT_TRUE(outcome) << outcome.failure().reason;
  EXPECT_EQ(outcome->nodes, 2);
  EXPECT_EQ(outcome->trusses, 2);
  EXPECT_THAT(outcome->remarks, ElementsAre("The column \"colour\" is not read."));
  EXPECT_EQ(*project.getNodeCoordinates(2), (Vector3{1, 2.5, 0}));
  EXPECT_EQ(*project.getNodeCoordinates(3), (Vector3{4, 0, 0}));
  EXPECT_EQ(project.nI, 24);
  EXPECT_EQ(project.F_I->at(13), -3);
  EXPECT_TRUE((*project.D_I)[12] && (*project.D_I)[17] && !(*project.D_I)[13]);
  EXPECT_EQ(readEnds(project), (Ends{{0, 1}, {3, 2}, {2, 3}}));
  const auto& bars = *project.trussElements;
  EXPECT_EQ(bars[1], TrussElement(1, 3, 2, {4, 0, 0}, {1, 2.5, 0}, 9, 8, false, true));
  EXPECT_EQ(bars[2], TrussElement(2, 2, 3, {1, 2.5, 0}, {4, 0, 0}, 0.5, 8, false, true));

  const auto more = folder.put("more.csv", "start\tend\n0\t3\n");
  ASSERT_TRUE(importFiles(project, {more}, {}));
  EXPECT_EQ(readEnds(project).back(), (Ends::value_type{0, 3}));
}

TEST(Import, NamesTheFileAndPlaceOfAFaultAndChangesNothing) {
  const TemporaryFolder folder;
  const std::string good = folder.put("good.csv", "x,y\n1,2\n3,4\n");
  Project project;
  const auto reasonFor = [&](const char* name, const std::string& content) {
    const auto outcome = importFiles(project, {good, folder.put(name, content)}, {});
    EXPECT_EQ(project.nodeCount(), 0);
    return outcome ? "" : outcome.failure().reason;
  };
  EXPECT_EQ(reasonFor("a.csv", "x,y\n1,\n"), "a.csv, line 2, column y: expected a number, found \"\"");
  EXPECT_EQ(reasonFor("a.csv", "x,y\n\n1,nan\n"), "a.csv, line 3, column y: expected a number, found \"nan\"");
  EXPECT_THAT(reasonFor("a.csv", "x,y\n1,1e999\n"), HasSubstr("line 2, column y: expected a number"));
  EXPECT_THAT(reasonFor("a.dxf", dxf("0 LINE 10 1e999 20 0")), HasSubstr("expected a number, found \"1e999\""));
  EXPECT_EQ(reasonFor("a.csv", "x,y\n1\n"), "a.csv, line 2: 1 values for 2 columns");
  EXPECT_EQ(reasonFor("a.csv", "x,y,held\n1,2,w\n"),
            "a.csv, line 2, column held: \"w\" is none of x, y, z, rx, ry, rz");
  EXPECT_EQ(reasonFor("a.csv", "x,y,node\n1,2,1\n"), "a.csv, line 2, column node: the number 1 occurs twice");
  EXPECT_EQ(reasonFor("a.csv", "x,y\n\"1,2\n"), "a.csv, line 2, column x: a quotation mark is not closed");
  EXPECT_EQ(reasonFor("a.csv", "start,end\n0,2\n"), "a.csv, line 2, column end: there is no node 2");
  EXPECT_EQ(reasonFor("a.csv", "start,end\n0,-1\n"),
            "a.csv, line 2, column end: expected the number of a node, found \"-1\"");
  EXPECT_EQ(reasonFor("a.csv", "start,end,kind\n0,1,rope\n"),
            "a.csv, line 2, column kind: \"rope\" is none of bar, beam, non-linear, compression-only");
  EXPECT_EQ(reasonFor("a.csv", "start,end,kind\n0,1,beam\n"),
            "a.csv, line 2, column shearModulus: expected a number, found \"\"");
  const std::string hostile = "7\x1b[2j" + std::string(100, '\x85');
  for (const auto& [name, content] : {std::pair{"a.csv", "x,y\n1," + hostile},
                                      {"a.csv", "x,y,node\n1,2," + hostile},
                                      {"a.csv", "x,y,held\n1,2," + hostile},
                                      {"a.csv", "start,end,kind\n0,1," + hostile},
                                      {"a.csv", "x,y," + hostile + "," + hostile},
                                      {"a.csv", "x,y," + hostile + "\n1,2,3\"4"},
                                      {"a.csv", "x\ty\n1\t1,234" + hostile},
                                      {"a.dxf", dxf("0 LINE 10 " + hostile)},
                                      {"a.dxf", dxf(hostile)},
                                      {"a.dxf", dxf("0 LWPOLYLINE 70 " + hostile)},
                                      {"a\x1b[2j.csv", std::string()}}) {
    const std::string reason = reasonFor(name, content);
    EXPECT_THAT(reason, HasSubstr("\\x1b[2j"));
    EXPECT_TRUE(reason.size() < 1000 && std::ranges::none_of(reason, [](unsigned char c) { return c < ' '; }));
  }
  EXPECT_THAT(reasonFor("a.csv", "a,b\n1,2\n"), HasSubstr("neither x and y, for nodes, nor start and end"));
  EXPECT_THAT(reasonFor("a.csv", " \n"), HasSubstr("the file is empty"));
  EXPECT_EQ(reasonFor("a.csv", "x,y,X\n1,2,3\n"), "a.csv, line 1: the column \"X\" occurs twice");
  EXPECT_THAT(reasonFor("a.csv", "start,end,area\n1,0,1e307\n"),
              HasSubstr("the element from node 1 to node 0, by the project's numbers, has a length or a stiffness"));
  EXPECT_THAT(reasonFor("a.dxf", dxf("0 LINE 10 -1e308 20 2 11 1e308 21 2")), HasSubstr("from node 2 to node 3"));
  EXPECT_EQ(reasonFor("a.csv", "\n" + std::string(1000, ',')), "a.csv, line 2: 1001 columns; a table has at most 1000");
  EXPECT_EQ(reasonFor("a.csv", "x,y\n1,2\n" + std::string(100000, ',')), "a.csv, line 3: 100001 values for 2 columns");
  EXPECT_THAT(reasonFor("a.csv", std::string("x,y\n1,2\0\n", 9)), HasSubstr("column y: expected a number"));
  for (const char* const quoted : {"2\"3\"4", "\"2\"3", "2\"", "\"2\"\"3\"4", "\"2\" \"3\""})
    EXPECT_EQ(reasonFor("a.csv", std::string("x,y\n1,") + quoted),
              "a.csv, line 2, column y: quotation marks must enclose a whole value, and be doubled inside it");
  EXPECT_THAT(reasonFor("a.dxf", "0\nSECTION\nx\n"), HasSubstr("a.dxf, line 3: expected a group code"));
  EXPECT_THAT(reasonFor("a.dxf", dxf("0 LINE 10 x")), HasSubstr("expected a number, found \"x\""));
  EXPECT_THAT(reasonFor("a.dxf", dxf("0 LINE 10 1 20 2 11 3")), HasSubstr("line 18: the LINE has no group 21"));
  EXPECT_THAT(reasonFor("a.dxf", dxf("0 LWPOLYLINE 10 1 10 2 20 3")), HasSubstr("the LWPOLYLINE has no group 20"));
  EXPECT_THAT(reasonFor("a.dxf", dxf("0 POLYLINE 70 1e30")), HasSubstr("expected a whole number, found \"1e30\""));
  EXPECT_THAT(reasonFor("a.DXF", "0\nSECTION\n2\nENTITIES\n"), HasSubstr("ends before its EOF"));
  EXPECT_THAT(reasonFor("a.dxf", "AutoCAD Binary DXF\r\n"), HasSubstr("a.dxf, byte 0: the beginning"));
}

TEST(Import, ReadsACommaByOneRuleInATable) {
  const TemporaryFolder folder;
  const auto importCoordinates = [&](const std::string& content) -> std::vector<double> {
    Project project;
    if (!importFiles(project, {folder.put("a.csv", content)}, {})) return {};
    return *project.X_I;
  };
  EXPECT_THAT(importCoordinates("x;y\n1,234;-0,5\n"), ElementsAre(1.234, -0.5, 0));
  EXPECT_THAT(importCoordinates("x;y\n1,234;2\n"), ElementsAre(1.234, 2, 0));
  EXPECT_THAT(importCoordinates("x\ty\n1,234\t5,5e1\n"), ElementsAre(1.234, 55, 0));
  EXPECT_THAT(importCoordinates("x\ty\tnote\n0,234\t1\tv1.2\n"), ElementsAre(0.234, 1, 0));
  EXPECT_THAT(importCoordinates("x\ty\tnote\n1.5\t1\ta,b\n"), ElementsAre(1.5, 1, 0));
  EXPECT_THAT(importCoordinates("x,y\n\"1.5\", \"2\" \n"), ElementsAre(1.5, 2, 0));
  EXPECT_THAT(importCoordinates("\"a \"\"b\"\", c\", x ,\ty\n\"1\"\"\",\"1.5\",2\r\n\r\n"), ElementsAre(1.5, 2, 0));

  Project project;
  const auto reasonFor = [&](const std::string& content) {
    const auto outcome = importFiles(project, {folder.put("a.csv", content)}, {});
    return outcome ? "" : outcome.failure().reason;
  };
  const char* const twoMarks =
      "a.csv, line 3, column y: a number has a comma, but one has a point in line 2, column x; "
      "a table has one decimal mark";
  EXPECT_EQ(reasonFor("x\ty\n1.5\t2\n3\t1,234\n"), twoMarks);
  EXPECT_EQ(reasonFor("x;y\n1.5;2\n3;0,5\n"), twoMarks);
  EXPECT_EQ(reasonFor("x\ty\n1\t2\n-1,234\t22,500\n"),
            "a.csv, line 3, column x: the comma of \"-1,234\" may mark decimals or thousands; use a point or none");
  EXPECT_EQ(reasonFor("x;y\n1;1.234,5\n").substr(0, 24), "a.csv, line 2, column y:");
  EXPECT_EQ(reasonFor("x;y\n1;1,234,567\n"), "a.csv, line 2, column y: expected a number, found \"1,234,567\"");
  EXPECT_EQ(reasonFor("x,y\n1,\"1,234\"\n"), "a.csv, line 2, column y: expected a number, found \"1,234\"");
  project.addNode({});
  project.addNode({1, 0, 0});
  EXPECT_THAT(reasonFor("start\tend\tarea\tyoungModulus\n0\t1\t0.5\t210,000\n"), HasSubstr("column youngModulus"));
}

TEST(Import, JoinsTheLinesOfADrawing) {
  const TemporaryFolder folder;
  Project project;
  project.addNode({4, 0, 3});
  const std::string file =
      folder.put("frame.dxf",
                 dxf("0 LINE 8 wall 10 0 20 0 30 0 11 4 21 1e-7 31 3 "  // to the node that is there
                     "0 LINE 10 4 20 0 30 3 11 1e-7 21 0 31 0 "         // the same line again
                     "0 CIRCLE 10 0 20 0 40 1 "
                     "0 LINE 67 1 10 1 20 1 11 2 21 2 0 LINE 67 1 10 1 20 1 11 2 21 3 "
                     "0 POLYLINE 67 1 0 VERTEX 67 1 10 8 20 4 0 VERTEX 10 9 20 4 0 SEQEND 67 1 "
                     "0 LWPOLYLINE 90 3 70 1 38 3 10 4 20 0 10 8 20 0 42 0.5 10 8 20 4 "
                     "0 POLYLINE 70 8 0 VERTEX 10 8 20 4 30 3 0 VERTEX 10 8 20 4 30 9 0 VERTEX 10 8 20 4 30 9 0 SEQEND "
                     "0 POLYLINE 70 16 0 VERTEX 10 50 20 4 30 3 0 SEQEND "
                     "0 LWPOLYLINE 230 -1 10 0 20 0 10 1 20 1"));
  const auto outcome = importFiles(project, {file}, {});
  ASSERT_TRUE(outcome) << outcome.failure().reason;
  EXPECT_EQ(readEnds(project), (Ends{{1, 0}, {0, 2}, {2, 3}, {3, 0}, {3, 4}}));
  EXPECT_EQ(*project.getNodeCoordinates(4), (Vector3{8, 4, 9}));
  EXPECT_EQ(project.trussElements->front(), TrussElement(0, 1, 0, {0, 0, 0}, {4, 0, 3}, 25, 1e5, false, false));
  EXPECT_THAT(outcome->remarks,
              ElementsAre("1 CIRCLE left out: not made of straight lines in space.",
                          "2 LINE left out: on the sheet of paper, not in space.",
                          "1 LWPOLYLINE left out: not made of straight lines in space.",
                          "1 POLYLINE left out: not made of straight lines in space.",
                          "1 POLYLINE left out: on the sheet of paper, not in space.",
                          "1 polylines with arcs: the arcs became straight.", "1 lines without length left out.",
                          "1 lines left out that join two nodes again."));
  // In a drawing of 10,000 units, ends meet that are less than a hundredth apart.
  Project large;
  const auto lines = folder.put("large.dxf", dxf("0 LINE 10 0 20 0 11 10000 21 0 0 LINE 10 10000 20 0.005 11 9000 21 9 "
                                                 "0 LINE 10 9000 20 9.02 11 0 21 9"));
  ASSERT_TRUE(importFiles(large, {lines}, {}));
  EXPECT_EQ(large.nodeCount(), 5);
  Project coarse;
  coarse.addNode({8, 0, 3});
  ASSERT_TRUE(importFiles(coarse, {file}, {.tolerance = 4.5}));
  EXPECT_EQ(coarse.nodeCount(), 3);
}
