#pragma once

#include <cstdint>
#include <functional>
#include <tuple>
#include <vector>

#include "DataModel/CSR.h"
#include "DataModel/ElementRecord.h"
#include "DataModel/Vector3.h"

namespace gavrel {

/// An axial bar between two nodes. The record keeps the undeformed geometry as a difference vector (start minus end)
/// and section and material folded into one factor; the solver writes the last four floating fields. Only those and
/// `isNonLinear` change after construction.
struct TrussElement {
  std::int64_t id = 0;
  std::int64_t startNodeId = 0;
  std::int64_t endNodeId = 0;
  std::int64_t materialID = 0;
  double area = 0;
  double dXx = 0;  ///< start x minus end x of the undeformed nodes
  double dXy = 0;
  double dXz = 0;
  double EAL3 = 0;  ///< area * Young's modulus / L^3; 0 for an element of zero length
  double dUx = 0;   ///< displacement of the start minus that of the end, at the last assembly
  double dUy = 0;
  double dUz = 0;
  double currentStrain = 0;  ///< axial measure q of the last assembly: L^2 times the strain, positive in tension
  bool isCompressionOnly = false;
  bool isNonLinear = false;

  TrussElement() = default;

  /// A bar between two points. For a length of at most 1e-9 it prints a warning line and has no stiffness. Identifiers
  /// and numbers are stored as given.
  TrussElement(std::int64_t id, std::int64_t startNodeId, std::int64_t endNodeId, const Vector3& startNodeCoordinates,
               const Vector3& endNodeCoordinates, double area, double youngModulus, bool isCompressionOnly,
               bool isNonLinear);

  /// Small strain -(X·U) / L^2 of the last assembly: positive when the bar shortens. Not finite for zero length.
  [[nodiscard]] double strain() const;

  /// Strain of the last assembly, currentStrain / L^2: positive in tension, X·U / L^2 for a linear bar, with the
  /// quadratic part |U|^2 / 2L^2 for a non-linear one. Not finite for zero length.
  [[nodiscard]] double tensileStrain() const;

  /// Whether this is a compression-only bar that was out: stretched at the last assembly, so that it carried nothing.
  [[nodiscard]] bool isOut() const { return isCompressionOnly && currentStrain * EAL3 > 0; }

  /// Axial force EAL3 · q · |a| of the last assembly, with a the chord on which the assembly worked: the initial one
  /// for a linear bar, the current one for a non-linear bar. Positive in tension; 0 while a compression-only bar is
  /// out.
  [[nodiscard]] double axialForce() const;

  /// Adds the bar's internal force and tangent stiffness at the displacements `U_I` to the global residual and matrix,
  /// and records its own deformation. Linear: q = X·U, chord a = X. Non-linear: the Green-Lagrange measure
  /// q = X·U + |U|^2/2 on the current chord a = X + U. With N = EAL3·q the force is N·a and the stiffness
  /// EAL3·a⊗a (+ N·I when non-linear), gradient and Hessian of the energy EAL3·q^2/2 (Crisfield, Non-linear Finite
  /// Element Analysis of Solids and Structures, vol. 1, ch. 3). A compression-only bar with N > 0 adds nothing.
  ///
  /// R_I, D_I, U_I, vv_J: six entries per node. Indices out of range are fatal.
  void makeAssembly(std::vector<double>& R_I, CSR& H_II, const std::vector<bool>& D_I, const std::vector<double>& U_I,
                    std::vector<std::int64_t>& vv_J);

  bool operator==(const TrussElement&) const = default;

  static constexpr auto fields = std::make_tuple(
      ElementField{"id", &TrussElement::id}, ElementField{"startNodeId", &TrussElement::startNodeId},
      ElementField{"endNodeId", &TrussElement::endNodeId}, ElementField{"materialID", &TrussElement::materialID},
      ElementField{"area", &TrussElement::area}, ElementField{"dXx", &TrussElement::dXx},
      ElementField{"dXy", &TrussElement::dXy}, ElementField{"dXz", &TrussElement::dXz},
      ElementField{"EAL3", &TrussElement::EAL3}, ElementField{"dUx", &TrussElement::dUx},
      ElementField{"dUy", &TrussElement::dUy}, ElementField{"dUz", &TrussElement::dUz},
      ElementField{"currentStrain", &TrussElement::currentStrain},
      ElementField{"isCompressionOnly", &TrussElement::isCompressionOnly},
      ElementField{"isNonLinear", &TrussElement::isNonLinear});
};

}  // namespace gavrel

template <>
struct std::hash<gavrel::TrussElement> {
  std::size_t operator()(const gavrel::TrussElement& truss) const { return hashOfFields(truss); }
};
