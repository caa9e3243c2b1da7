#pragma once

#include <cstdint>
#include <functional>
#include <tuple>
#include <vector>

#include "DataModel/CSR.h"
#include "DataModel/ElementRecord.h"
#include "DataModel/Vector3.h"

namespace gavrel {

/// A beam with bending and torsion between two nodes. The stiffness factors EA, EIz, EIy and GJ are divided by the
/// length once; GJ is formed with `inertiaY`. The solver writes the last six fields. Only those and `isNonLinear`
/// change after construction.
struct BeamElement {
  std::int64_t id = 0;
  std::int64_t startNodeId = 0;
  std::int64_t endNodeId = 0;
  std::int64_t materialID = 0;
  double area = 0;
  double inertiaY = 0;  ///< second moment of area about the local y axis
  double inertiaZ = 0;  ///< second moment of area about the local z axis
  double youngModulus = 0;
  double shearModulus = 0;
  double dXx = 0;  ///< start x minus end x of the undeformed nodes
  double dXy = 0;
  double dXz = 0;
  double EA = 0;             ///< area * E / L
  double EIz = 0;            ///< inertiaZ * E / L
  double EIy = 0;            ///< inertiaY * E / L
  double GJ = 0;             ///< inertiaY * G / L
  bool isNonLinear = false;  ///< kept and stored; the formulation has no non-linear form
  double dUx = 0;            ///< displacement of the start minus that of the end, at the last assembly
  double dUy = 0;
  double dUz = 0;
  double dθx = 0;  ///< rotation of the start minus that of the end, at the last assembly
  double dθy = 0;
  double dθz = 0;

  BeamElement() = default;

  /// A beam between two points. For a length of at most 1e-9 it prints a warning line and all four factors are 0.
  /// Identifiers and numbers are stored as given.
  BeamElement(std::int64_t id, std::int64_t startNodeId, std::int64_t endNodeId, const Vector3& startNodeCoordinates,
              const Vector3& endNodeCoordinates, double area, double inertiaY, double inertiaZ, double youngModulus,
              double shearModulus, bool isNonLinear);

  /// Records the beam's relative displacements and adds its constant stiffness to the global matrix. The matrix is the
  /// Euler-Bernoulli one of a beam along the global x axis (Przemieniecki, Theory of Matrix Structural Analysis, ch. 5)
  /// with these differences: it is not turned into the beam's direction, the bending length is the x component of
  /// the chord, bending in y pairs EIy with the couplings of EIz and the other way round, and there is no internal
  /// force, so that the residual never falls. A beam with dXx = 0 has entries that are not finite.
  ///
  /// R_I, D_I, U_I, vv_J: six entries per node. Indices out of range are fatal.
  void makeAssembly(std::vector<double>& R_I, CSR& H_II, const std::vector<bool>& D_I, const std::vector<double>& U_I,
                    std::vector<std::int64_t>& vv_J);

  bool operator==(const BeamElement&) const = default;

  static constexpr auto fields = std::make_tuple(
      ElementField{"id", &BeamElement::id}, ElementField{"startNodeId", &BeamElement::startNodeId},
      ElementField{"endNodeId", &BeamElement::endNodeId}, ElementField{"materialID", &BeamElement::materialID},
      ElementField{"area", &BeamElement::area}, ElementField{"inertiaY", &BeamElement::inertiaY},
      ElementField{"inertiaZ", &BeamElement::inertiaZ}, ElementField{"youngModulus", &BeamElement::youngModulus},
      ElementField{"shearModulus", &BeamElement::shearModulus}, ElementField{"dXx", &BeamElement::dXx},
      ElementField{"dXy", &BeamElement::dXy}, ElementField{"dXz", &BeamElement::dXz},
      ElementField{"EA", &BeamElement::EA}, ElementField{"EIz", &BeamElement::EIz},
      ElementField{"EIy", &BeamElement::EIy}, ElementField{"GJ", &BeamElement::GJ},
      ElementField{"isNonLinear", &BeamElement::isNonLinear}, ElementField{"dUx", &BeamElement::dUx},
      ElementField{"dUy", &BeamElement::dUy}, ElementField{"dUz", &BeamElement::dUz},
      ElementField{"dθx", &BeamElement::dθx}, ElementField{"dθy", &BeamElement::dθy},
      ElementField{"dθz", &BeamElement::dθz});
};

}  // namespace gavrel

template <>
struct std::hash<gavrel::BeamElement> {
  std::size_t operator()(const gavrel::BeamElement& beam) const { return hashOfFields(beam); }
};
