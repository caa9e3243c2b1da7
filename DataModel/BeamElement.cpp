#include "DataModel/BeamElement.h"

#include <array>
#include <cmath>
#include <string>

#include "DataModel/ElementDofs.h"
#include "Platform/Console.h"

namespace gavrel {

namespace {

constexpr std::size_t n = 2 * dofsPerNode;
using Matrix = std::array<double, n * n>;

/// The 12 × 12 stiffness, row by row; local order: translations x, y, z and rotations x, y, z of the start, then of the
/// end.
Matrix stiffness(const BeamElement& beam) {
  const double EA = beam.EA;
  const double GJ = beam.GJ;
  const double Lx = beam.dXx;
  const double a1 = 12 * beam.EIy / std::pow(Lx, 3.0);
  const double a2 = 6 * beam.EIy / (Lx * Lx);
  const double a3 = 4 * beam.EIy / Lx;
  const double a4 = 2 * beam.EIy / Lx;
  const double b1 = 12 * beam.EIz / std::pow(Lx, 3.0);
  const double b2 = 6 * beam.EIz / (Lx * Lx);
  const double b3 = 4 * beam.EIz / Lx;
  const double b4 = 2 * beam.EIz / Lx;
  // clang-format off
  return {
     EA,   0,   0,   0,   0,   0, -EA,   0,   0,   0,   0,   0,
      0,  a1,   0,   0,   0,  b2,   0, -a1,   0,   0,   0,  b2,
      0,   0,  b1,   0, -a2,   0,   0,   0, -b1,   0, -a2,   0,
      0,   0,   0,  GJ,   0,   0,   0,   0,   0, -GJ,   0,   0,
      0,   0, -a2,   0,  a3,   0,   0,   0,  a2,   0,  a4,   0,
      0,  b2,   0,   0,   0,  b3,   0, -b2,   0,   0,   0,  b4,
    -EA,   0,   0,   0,   0,   0,  EA,   0,   0,   0,   0,   0,
      0, -a1,   0,   0,   0, -b2,   0,  a1,   0,   0,   0, -b2,
      0,   0, -b1,   0,  a2,   0,   0,   0,  b1,   0,  a2,   0,
      0,   0,   0, -GJ,   0,   0,   0,   0,   0,  GJ,   0,   0,
      0,   0,  a2,   0,  a4,   0,   0,   0, -a2,   0,  a3,   0,
      0,  b2,   0,   0,   0,  b4,   0, -b2,   0,   0,   0,  b3};
  // clang-format on
}

}  // namespace

BeamElement::BeamElement(std::int64_t id_, std::int64_t startNodeId_, std::int64_t endNodeId_,
                         const Vector3& startNodeCoordinates, const Vector3& endNodeCoordinates, double area_,
                         double inertiaY_, double inertiaZ_, double youngModulus_, double shearModulus_,
                         bool isNonLinear_)
    : id(id_),
      startNodeId(startNodeId_),
      endNodeId(endNodeId_),
      area(area_),
      inertiaY(inertiaY_),
      inertiaZ(inertiaZ_),
      youngModulus(youngModulus_),
      shearModulus(shearModulus_),
      isNonLinear(isNonLinear_) {
  const Vector3 dX = startNodeCoordinates - endNodeCoordinates;
  dXx = dX.x;
  dXy = dX.y;
  dXz = dX.z;
  const double L = length(dX);
  if (L > zeroLength) {
    EA = area * youngModulus / L;
    EIz = inertiaZ * youngModulus / L;
    EIy = inertiaY * youngModulus / L;
    GJ = inertiaY * shearModulus / L;
  } else {
    printLine("Warning: Beam element has zero initial length for ID " + std::to_string(id) + ".");
  }
}

void BeamElement::makeAssembly(std::vector<double>& R_I, CSR& H_II, const std::vector<bool>& D_I,
                               const std::vector<double>& U_I, std::vector<std::int64_t>& vv_J) {
  const auto [I_v, U] = ElementDofs<dofsPerNode>(startNodeId, endNodeId, U_I);
  dUx = U[0];
  dUy = U[1];
  dUz = U[2];
  dθx = U[3];
  dθy = U[4];
  dθz = U[5];

  constexpr std::array<double, n> F_v{};
  H_II.makeAssembly(stiffness(*this), F_v, I_v, R_I, D_I, vv_J);
}

}  // namespace gavrel
