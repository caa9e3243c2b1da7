#include "DataModel/Connectivity.h"

#include <gmock/gmock.h>

using namespace gavrel;

namespace {

using testing::ElementsAre;

template <class Element>
Element joining(std::int64_t start, std::int64_t end, double length = 1) {
  Element element;
  element.startNodeId = start;
  element.endNodeId = end;
  element.dXz = length;
  return element;
}

TEST(Connectivity, TellsHowElementsJoinTheNodes) {
  constexpr auto bar = joining<TrussElement>;
  constexpr auto beam = joining<BeamElement>;
  Project project("",
                  {bar(1, 2, 1), bar(2, 0, 1), bar(2, 1, 1), bar(1, 0, 0), bar(3, 3, -1e-9), bar(4, 9, 1),
                   bar(9, 10, 1), bar(-1, 5, 1), bar(1, 2, 2e-9)},
                  {beam(6, 7, 1), beam(1, 2, 1), beam(8, 4, 0), beam(7, 6, 1), beam(6, 8, 1)});
  for (int i = 0; i < 10; ++i) project.addNode({});
  const Connectivity found = Connectivity::examine(project);
  EXPECT_THAT(found.zeroLengthTrusses, ElementsAre(3, 4));
  EXPECT_THAT(found.zeroLengthBeams, ElementsAre(2));
  EXPECT_THAT(found.trussesWithUnknownNodes, ElementsAre(6, 7)) << "node 10 is one too far";
  EXPECT_THAT(found.beamsWithUnknownNodes, ElementsAre());
  EXPECT_THAT(found.repeatedTrusses, ElementsAre(2, 8)) << "a beam beside a bar repeats nothing";
  EXPECT_THAT(found.repeatedBeams, ElementsAre(3));
  EXPECT_THAT(found.nodesWithoutElements, ElementsAre());
  EXPECT_THAT(found.partOf, ElementsAre(0, 0, 0, 3, 4, 5, 4, 4, 4, 4));

  project.beamElements.edit()[2] = beam(12, 4, 1);
  project.trussElements.edit()[7].endNodeId = 0;
  const Connectivity changed = Connectivity::examine(project);
  EXPECT_THAT(changed.beamsWithUnknownNodes, ElementsAre(2));
  EXPECT_THAT(changed.nodesWithoutElements, ElementsAre(5));
  EXPECT_THAT(changed.partOf, ElementsAre(0, 0, 0, 3, 4, 5, 6, 6, 6, 4));
}

}  // namespace
