#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "DataModel/BeamElement.h"
#include "DataModel/CSR.h"
#include "DataModel/TrussElement.h"
#include "DataModel/Vector3.h"
#include "Platform/Observable.h"

namespace gavrel {

/// The structural model in memory. Solver solves it.
///
/// A node is known by its position n in creation order. `X_I` holds three coordinates per node, all other arrays six
/// entries: translations along and rotations about x, y, z, numbered 6n to 6n + 5. Loads, coordinates and displacements
/// are in consistent user units, rotations in radians. Changes of the published properties are announced to observers
/// before they take effect.
class Project : public Observable {
 public:
  struct Restraints {
    bool x = false;
    bool y = false;
    bool z = false;

    bool operator==(const Restraints&) const = default;
  };

  /// Called after each step of a solve with the number of steps done and the relative residual norm.
  using StepObserver = std::function<void(int step, double normRoF0F1F)>;

  static constexpr double convergenceTolerance = 1e-5;
  static constexpr int iterationLimit = 50;
  /// A diagonal below this in absolute value counts as none.
  static constexpr double zeroPivot = 1e-9;

  Published<std::string> name;
  Published<std::vector<TrussElement>> trussElements;
  Published<std::vector<BeamElement>> beamElements;
  Published<std::vector<double>> X_I;  ///< coordinates
  Published<std::vector<double>> U_I;  ///< total displacements
  std::vector<double> dU_I;            ///< displacement increment of the last step
  Published<std::vector<double>> F_I;  ///< external loads
  std::vector<double> R_I;             ///< residual of the last assembly; sized by the solver
  Published<std::vector<bool>> D_I;    ///< restraint flags
  CSR H_II;                            ///< tangent stiffness of the last solve
  double magnify;                      ///< displacement magnification given by the creator
  std::int64_t nI = 0;                 ///< number of degrees of freedom: six per node
  std::vector<std::int64_t> vv_J;      ///< work space of the assembly

  /// A project without nodes.
  explicit Project(std::string name = "New Project", std::vector<TrussElement> trussElements = {},
                   std::vector<BeamElement> beamElements = {}, double magnify = 1.0);

  /// Another project with the same structure and state, without observers and without the matrix of the last solve.
  [[nodiscard]] std::shared_ptr<Project> copy() const;

  /// Nodes in the model: a third of the coordinates, rounded down.
  [[nodiscard]] std::int64_t nodeCount() const { return static_cast<std::int64_t>(X_I->size()) / 3; }

  /// Appends a free, unloaded node; its identifier is the node count before the call.
  void addNode(const Vector3& coordinates);

  /// Sets restraints and load of a node's translations. A restrained direction carries no load: what is given for it is
  /// dropped. Nothing happens for a node past the end; a negative identifier is fatal.
  void setLoadAndRestraint(std::int64_t nodeID, const Vector3& load, bool rx, bool ry, bool rz);

  /// The entries 3·nodeID to 3·nodeID + 2 of X_I, U_I, F_I and D_I, or nothing when they end before. The stride is
  /// three for all four, although the last three arrays hold six entries per node: callers get the translations of node
  /// 0 only. Negative identifiers are fatal.
  [[nodiscard]] std::optional<Vector3> getNodeCoordinates(std::int64_t nodeID) const;
  [[nodiscard]] std::optional<Vector3> getNodeDisplacement(std::int64_t nodeID) const;
  [[nodiscard]] std::optional<Vector3> getNodeForce(std::int64_t nodeID) const;
  [[nodiscard]] std::optional<Restraints> getNodeRestraints(std::int64_t nodeID) const;

  /// Static equilibrium under the whole load by full Newton-Raphson steps from zero displacement. Prints an empty line,
  /// then each step's relative residual norm |R_I| / |F_I|, and stops below `convergenceTolerance` or after
  /// `iterationLimit` steps. Not converging is not reported as a failure; a structure that cannot be factorized ends
  /// the process with a line that names the node and direction. One that is singular except for rounding errors causes
  /// a warning on standard error. Throws std::bad_alloc when there is not enough memory.
  void Solve(const StepObserver& afterStep = {});

  /// Takes over displacements, residual, matrix and elements from a copy that was solved.
  void takeSolution(Project&& solved);

  /// Positions of the compression-only bars that were out at the last assembly.
  [[nodiscard]] std::vector<std::int64_t> findBarsOut() const;

  /// One Newton step: assembles at U_I, stores the relative residual norm in `normRoF0F1F` and, unless that is below
  /// the tolerance, solves for dU_I and adds it to U_I. `normF`: the norm of the loads. Ends the process like Solve.
  void SolveOneStep(double& normRoF0F1F, double normF);

  /// Replaces each diagonal below 1e-9 in absolute value by the first stored value of the matrix. A matrix without
  /// values, and a last row without entries, are fatal.
  void FillHessianDiagonal();

  /// Solves H_II · dU_I = R_I. A matrix that is not positive definite is fatal; one that is singular except for
  /// rounding errors causes a warning on standard error.
  void LinearSolve();
};

/// "translation along z" for the number of a degree of freedom.
[[nodiscard]] std::string describeDirection(std::int64_t dof);

/// "node 3, translation along z".
[[nodiscard]] std::string describeDof(std::int64_t dof);

}  // namespace gavrel
