#include <gmock/gmock.h>

#include <array>
#include <cstdio>

#include "Exchange/Export.h"
#include "Tests/Structures.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

using testing::HasSubstr;

/// A bar of each kind and a beam, in a state as a solve leaves it.
struct Structure : Project {
  Structure() {
    for (const Vector3& place : {Vector3{0, 0, 0}, Vector3{3, 4, 0}, Vector3{6, 0, 0.1}}) addNode(place);
    setLoadAndRestraint(0, {}, true, false, true);
    setLoadAndRestraint(1, {0.1, 0, -1e-5}, false, false, false);
    D_I.edit()[5] = true;
    F_I.edit()[10] = 7;
    U_I.edit()[6] = 1.0 / 3;
    U_I.edit()[11] = 0.25;
    addBar(*this, 0, 1, 2100);
    addBar(*this, 1, 2, 10, {.isCompressionOnly = true, .isNonLinear = true});
    addBeam(*this, 2, 0, 77, false);
    auto& bars = trussElements.edit();
    bars[0].currentStrain = -2.5;  // times EAL3 = 2100 / 125 times L = 5: a force of -210
    bars[1].currentStrain = 0.5;
  }
};

std::string runForOutput(const std::string& command) {
  const auto close = [](FILE* pipe) { ::pclose(pipe); };
  const std::unique_ptr<FILE, decltype(close)> pipe(::popen(command.c_str(), "r"), close);
  std::string output;
  std::array<char, 4096> piece{};
  while (const auto count = std::fread(piece.data(), 1, piece.size(), pipe.get())) output.append(piece.data(), count);
  return output;
}

}  // namespace

TEST(Export, TablesTellEveryNumberExactly) {
  const TemporaryFolder folder;
  const Structure structure;
  ASSERT_FALSE(exportNodes(structure, folder / "nodes.csv"));
  EXPECT_EQ(folder.get("nodes.csv"),
            "node,x,y,z,Fx,Fy,Fz,Mx,My,Mz,held,ux,uy,uz,θx,θy,θz\n"
            "0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,x z rz,0.0,0.0,0.0,0.0,0.0,0.0\n"
            "1,3.0,4.0,0.0,0.1,0.0,-1e-05,0.0,7.0,0.0,,0.3333333333333333,0.0,0.0,0.0,0.0,0.25\n"
            "2,6.0,0.0,0.1,0.0,0.0,0.0,0.0,0.0,0.0,,0.0,0.0,0.0,0.0,0.0,0.0\n");
  ASSERT_FALSE(exportElements(structure, folder / "elements.csv"));
  EXPECT_THAT(folder.get("elements.csv"),
              testing::StartsWith("kind,number,start,end,length,strain,force,state,area,youngModulus,shearModulus,"
                                  "inertiaY,inertiaZ\n"
                                  "bar,0,0,1,5.0,-0.1,-210.0,,1.0,2100.0,,,\n"
                                  "non-linear compression-only bar,1,1,2,"));
  EXPECT_THAT(folder.get("elements.csv"), HasSubstr(",0.0,out,1.0,10.0,,,\nbeam,0,2,0,"));
  EXPECT_THAT(folder.get("elements.csv"), testing::EndsWith(",,,,1.0,77.0,77.0,1.0,1.0\n"));
  EXPECT_TRUE(exportNodes(structure, folder / "none" / "nodes.csv"));
}

TEST(Export, LeavesOutTheResultsOfAnEarlierSolve) {
  const TemporaryFolder folder;
  const Structure structure;
  ASSERT_FALSE(exportNodes(structure, folder / "nodes.csv", Results::leftOut));
  EXPECT_THAT(folder.get("nodes.csv"), HasSubstr("\n1,3.0,4.0,0.0,0.1,0.0,-1e-05,0.0,7.0,0.0,,,,,,,\n"));
  ASSERT_FALSE(exportElements(structure, folder / "elements.csv", Results::leftOut));
  EXPECT_THAT(folder.get("elements.csv"), HasSubstr("\nbar,0,0,1,5.0,,,,1.0,2100.0,,,\n"));
  ASSERT_FALSE(exportVtu(structure, folder / "grid.vtu", Results::leftOut));
  for (const char* name : {"displacement", "rotation", "axialForce", "\"strain\""})
    EXPECT_THAT(folder.get("grid.vtu"), testing::Not(HasSubstr(name)));
}

TEST(Export, VtkReadsTheGrid) {
  const TemporaryFolder folder;
  Structure structure;
  addBar(structure, 0, 1, 1);
  structure.trussElements.edit()[2].endNodeId = 9;
  ASSERT_FALSE(exportVtu(structure, folder / "grid.vtu"));
  const std::string found = runForOutput(std::string(READ_VTU) + " " + std::string(folder / "grid.vtu"));
  for (const char* line : {"point 0.0 0.0 0.0\npoint 3.0 4.0 0.0\npoint 6.0 0.0 0.1\n",
                           "cell vtkLine 0 1\ncell vtkLine 1 2\ncell vtkLine 2 0\ndisplacement",
                           "displacement (0.0, 0.0, 0.0) (0.3333333333333333, 0.0, 0.0) (0.0, 0.0, 0.0)\n",
                           "rotation (0.0, 0.0, 0.0) (0.0, 0.0, 0.25) (0.0, 0.0, 0.0)\n",
                           "load (0.0, 0.0, 0.0) (0.1, 0.0, -1e-05) (0.0, 0.0, 0.0)\n",
                           "moment (0.0, 0.0, 0.0) (0.0, 7.0, 0.0) (0.0, 0.0, 0.0)\n",
                           "restraints (37.0,) (0.0,) (0.0,)\n", "axialForce (-210.0,) (0.0,) (nan,)\n",
                           "strain (-0.1,) (", "area (1.0,) (1.0,) (1.0,)\n", "kind (0.0,) (1.0,) (2.0,)\n"})
    EXPECT_THAT(found, HasSubstr(line));
}
