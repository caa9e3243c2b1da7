#include "DataModel/TrussElement.h"

#include <array>
#include <cmath>
#include <string>

#include "DataModel/ElementDofs.h"
#include "Platform/Console.h"

namespace gavrel {

TrussElement::TrussElement(std::int64_t id_, std::int64_t startNodeId_, std::int64_t endNodeId_,
                           const Vector3& startNodeCoordinates, const Vector3& endNodeCoordinates, double area_,
                           double youngModulus, bool isCompressionOnly_, bool isNonLinear_)
    : id(id_),
      startNodeId(startNodeId_),
      endNodeId(endNodeId_),
      area(area_),
      isCompressionOnly(isCompressionOnly_),
      isNonLinear(isNonLinear_) {
  const Vector3 dX = startNodeCoordinates - endNodeCoordinates;
  dXx = dX.x;
  dXy = dX.y;
  dXz = dX.z;
  const double L = length(dX);
  if (L > zeroLength) {
    EAL3 = area * youngModulus / std::pow(L, 3.0);
  } else {
    printLine("Warning: Truss element has zero initial length for ID " + std::to_string(id) + ".");
  }
}

double TrussElement::strain() const {
  const double L = std::sqrt(dXx * dXx + dXy * dXy + dXz * dXz);
  const Vector3 n{-dXx / L, -dXy / L, -dXz / L};
  return (dUx * n.x + dUy * n.y + dUz * n.z) / L;
}

double TrussElement::tensileStrain() const {
  return currentStrain / (dXx * dXx + dXy * dXy + dXz * dXz);
}

double TrussElement::axialForce() const {
  if (isOut()) return 0;
  const double N = currentStrain * EAL3;
  const Vector3 a = isNonLinear ? Vector3{dXx + dUx, dXy + dUy, dXz + dUz} : Vector3{dXx, dXy, dXz};
  return N * length(a);
}

void TrussElement::makeAssembly(std::vector<double>& R_I, CSR& H_II, const std::vector<bool>& D_I,
                                const std::vector<double>& U_I, std::vector<std::int64_t>& vv_J) {
  constexpr std::size_t directions = 3;
  constexpr std::size_t n = 2 * directions;
  const auto [I_v, U] = ElementDofs<directions>(startNodeId, endNodeId, U_I);
  dUx = U[0];
  dUy = U[1];
  dUz = U[2];

  const std::array<double, directions> X{dXx, dXy, dXz};
  std::array<double, directions> a = X;
  currentStrain = 0;
  for (std::size_t k = 0; k < X.size(); ++k) {
    currentStrain += U[k] * (isNonLinear ? X[k] + 0.5 * U[k] : X[k]);
    if (isNonLinear) a[k] += U[k];
  }
  const double N = currentStrain * EAL3;
  if (isCompressionOnly && N > 0) return;

  std::array<double, n * n> H_vv{};
  std::array<double, n> F_v{};
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t j = 0; j < a.size(); ++j) {
      const double K = EAL3 * a[i] * a[j] + (isNonLinear && i == j ? N : 0.0);
      H_vv[i * n + j] = K;
      H_vv[i * n + j + directions] = -K;
      H_vv[(i + directions) * n + j] = -K;
      H_vv[(i + directions) * n + j + directions] = K;
    }
    F_v[i] = N * a[i];
    F_v[i + directions] = -N * a[i];
  }
  H_II.makeAssembly(H_vv, F_v, I_v, R_I, D_I, vv_J);
}

}  // namespace gavrel
