#include <algorithm>
#include <array>
#include <cmath>

#include "Diagnosis/StructureCheck.h"

namespace gavrel {

namespace {

using enum Finding::Consequence;
using Positions = std::vector<std::int64_t>;

/// Why a force remains in the residual.
enum class Cause {
  NoNode,      ///< it stands behind the entries of the last node
  Support,     ///< it acts on a restrained direction
  NoElement,   ///< no element has stiffness there
  TooSoft,     ///< the stiffness there counts as zero
  Beam,        ///< a beam ends there, which has stiffness but no internal force
  Equilibrium  ///< the bars have not reached equilibrium
};
constexpr std::size_t causes = 6;

/// The remaining forces of one cause.
struct Leftover {
  double squares = 0;
  double largest = 0;
  Positions nodes;

  [[nodiscard]] double norm() const { return std::sqrt(squares); }
};

/// Goes through the residual of a solve's last assembly.
class Residual {
 public:
  Residual(const Project& solved, const SolveOutcome& outcome)
      : project_(solved),
        touchedByBeam_(static_cast<std::size_t>(solved.nodeCount())),
        stiffnessOfBars_(static_cast<std::size_t>(solved.nI)),
        converged_(outcome.converged) {
    double squares = 0;
    for (const double load : *solved.F_I) squares += load * load;
    tolerated = Project::convergenceTolerance * std::sqrt(squares);
    for (const BeamElement& beam : *solved.beamElements)
      for (const std::int64_t node : {beam.startNodeId, beam.endNodeId})
        touchedByBeam_[static_cast<std::size_t>(node)] = true;
    for (const TrussElement& truss : *solved.trussElements) addStiffness(truss);
    // In two rounds, since nodes are named only for forces that are not small beside the largest one of their cause.
    for (std::size_t dof = 0; dof < solved.R_I.size(); ++dof) count(dof);
    for (std::size_t dof = 0; dof < solved.R_I.size(); ++dof) name(dof);
  }

  /// The forces that no step will change and, of a solve that did not converge, all that remain.
  [[nodiscard]] const Leftover& leftover(Cause cause) const { return left_[static_cast<std::size_t>(cause)]; }

  /// Whether these forces alone keep the solve from converging.
  [[nodiscard]] bool isTooLarge(Cause cause) const { return !(leftover(cause).norm() < tolerated); }

  double tolerated = 0;

 private:
  static constexpr double counting = 1e-3;

  [[nodiscard]] bool isOfBeam(std::size_t dof) const { return touchedByBeam_[dof / dofsPerNode]; }

  [[nodiscard]] Cause findCause(std::size_t dof) const {
    if (dof >= static_cast<std::size_t>(project_.nI)) return Cause::NoNode;
    const bool isTurn = dof % dofsPerNode >= 3;
    if (isTurn && !isOfBeam(dof)) return Cause::NoElement;
    if (dof < project_.D_I->size() && (*project_.D_I)[dof]) return Cause::Support;
    if (isOfBeam(dof)) return Cause::Beam;
    if (std::abs(stiffnessOfBars_[dof]) >= Project::zeroPivot) return Cause::Equilibrium;
    return project_.R_I[dof] == (*project_.F_I)[dof] ? Cause::NoElement : Cause::TooSoft;
  }

  void addStiffness(const TrussElement& truss) {
    if (truss.isOut()) return;
    const Vector3 X{truss.dXx, truss.dXy, truss.dXz};
    const Vector3 a = truss.isNonLinear ? Vector3{X.x + truss.dUx, X.y + truss.dUy, X.z + truss.dUz} : X;
    const double across = truss.isNonLinear ? truss.currentStrain * truss.EAL3 : 0;
    const double along[] = {truss.EAL3 * a.x * a.x, truss.EAL3 * a.y * a.y, truss.EAL3 * a.z * a.z};
    for (const std::int64_t node : {truss.startNodeId, truss.endNodeId})
      for (std::size_t k = 0; k < std::size(along); ++k)
        stiffnessOfBars_[static_cast<std::size_t>(dofsPerNode * node) + k] += along[k] + across;
  }

  /// After a solve that converged, forces of the last three causes are below the tolerance.
  [[nodiscard]] bool isLeft(std::size_t dof, Cause cause) const {
    return project_.R_I[dof] != 0 && !(converged_ && cause >= Cause::TooSoft);
  }

  void count(std::size_t dof) {
    const Cause cause = findCause(dof);
    if (!isLeft(dof, cause)) return;
    Leftover& left = left_[static_cast<std::size_t>(cause)];
    const double size = std::abs(project_.R_I[dof]);
    left.squares += size * size;
    if (!(size <= left.largest)) left.largest = size;
  }

  void name(std::size_t dof) {
    const Cause cause = findCause(dof);
    Leftover& left = left_[static_cast<std::size_t>(cause)];
    if (cause == Cause::NoNode || !isLeft(dof, cause) || std::abs(project_.R_I[dof]) < counting * left.largest) return;
    const auto node = static_cast<std::int64_t>(dof) / dofsPerNode;
    if (left.nodes.empty() || left.nodes.back() != node) left.nodes.push_back(node);
  }

  const Project& project_;
  std::vector<bool> touchedByBeam_;
  std::vector<double> stiffnessOfBars_;  // of each direction by itself
  bool converged_;
  std::array<Leftover, causes> left_;
};

/// Nodes with a load that is infinite or not a number.
Positions findNodesWithInfiniteLoads(const Project& project) {
  std::vector<bool> marked(static_cast<std::size_t>(project.nodeCount()));
  for (std::size_t i = 0; i < static_cast<std::size_t>(project.nI); ++i)
    if (!std::isfinite((*project.F_I)[i])) marked[i / dofsPerNode] = true;
  return collectMarked(marked);
}

/// Positions of the bars at these nodes that were out.
Positions findBarsOutAt(const Project& solved, const Positions& nodes) {
  Positions out;
  const auto isAmong = [&nodes](std::int64_t node) { return std::ranges::binary_search(nodes, node); };
  const auto& trusses = *solved.trussElements;
  for (std::size_t i = 0; i < trusses.size(); ++i)
    if (trusses[i].isOut() && (isAmong(trusses[i].startNodeId) || isAmong(trusses[i].endNodeId)))
      out.push_back(static_cast<std::int64_t>(i));
  return out;
}

/// Loads whose norm cannot be used: not finite, all zero, or out of range.
std::optional<Finding> inspectNorm(const Project& project, double norm, bool converged) {
  if (const auto nodes = findNodesWithInfiniteLoads(project); !nodes.empty())
    return Finding{NeverConverges, "Loads that are not finite",
                   "A load of " + listPositions("node", nodes) +
                       " is infinite or not a number, so that the solve never converges: enter a finite number.",
                   nodes};
  if (norm > 0 && std::isfinite(norm)) return std::nullopt;
  if (std::ranges::all_of(*project.F_I, [](double load) { return load == 0; }))
    return Finding{NeverConverges, "No loads",
                   "Nothing loads the structure, so that the solve runs all its steps, prints nan, and moves nothing: "
                   "load a node."};
  if (converged)
    return Finding{Meaningless, "Loads out of range",
                   "The squares of the loads are too large to be added up, so that any residual counts as zero, and "
                   "the displacements need not be those of equilibrium: take other units."};
  return Finding{NeverConverges, "Loads out of range",
                 std::string("The squares of the loads are ") + (norm > 0 ? "too large" : "too small") +
                     " to be added up, so that the solve never converges: take other units."};
}

std::string describeDrift(Finding::Consequence consequence) {
  return consequence == NeverConverges ? ", and the solve never converges" : "";
}

}  // namespace

std::vector<Finding> inspectLoads(const Project& solved, const SolveOutcome& outcome) {
  const Residual residual(solved, outcome);
  if (auto unmeasured = inspectNorm(solved, residual.tolerated, outcome.converged)) return {std::move(*unmeasured)};

  std::vector<Finding> findings;
  const auto weigh = [&](Cause cause) { return residual.isTooLarge(cause) ? NeverConverges : Doubtful; };
  if (const Leftover& left = residual.leftover(Cause::NoNode); left.squares > 0) {
    const auto consequence = weigh(Cause::NoNode);
    findings.push_back({consequence, "Loads beyond the last node",
                        "There are " + std::to_string(solved.F_I->size()) + " loads for " + std::to_string(solved.nI) +
                            " directions; those beyond the last node act on nothing" + describeDrift(consequence) +
                            ": remove them from the file."});
  }
  if (const Leftover& left = residual.leftover(Cause::Support); left.squares > 0) {
    const auto consequence = weigh(Cause::Support);
    findings.push_back({consequence, "Loads on supports",
                        "A restrained direction of " + listPositions("node", left.nodes) +
                            " carries a load, which moves it further in each step" + describeDrift(consequence) +
                            ": remove the load or the restraint.",
                        left.nodes});
  }
  if (outcome.fault) return findings;
  if (const Leftover& left = residual.leftover(Cause::NoElement); left.squares > 0) {
    const auto consequence = weigh(Cause::NoElement);
    const auto out = findBarsOutAt(solved, left.nodes);
    findings.push_back(
        {consequence, "Loads that nothing resists",
         "No element has stiffness in the direction of a load at " + listPositions("node", left.nodes) +
             (out.empty() ? "" : ", since " + listPositions("bar", out) + " took tension and dropped out") +
             ", so that the solver puts in a stiffness of its own, and the node moves further in each "
             "step" +
             describeDrift(consequence) + ": brace it, or remove the load.",
         left.nodes, out});
  }
  if (!outcome.ranOutOfSteps()) return findings;
  if (const Leftover& left = residual.leftover(Cause::TooSoft); left.squares > 0 && residual.isTooLarge(Cause::TooSoft))
    findings.push_back({NeverConverges, "Stiffness that counts as zero",
                        "The stiffness of " + listPositions("node", left.nodes) + " is less than " +
                            formatRounded(Project::zeroPivot) +
                            " in some direction, which the solver takes for zero and replaces, so that the solve never "
                            "converges: take other units.",
                        left.nodes});
  const Leftover& byBeams = residual.leftover(Cause::Beam);
  if (residual.isTooLarge(Cause::Beam) && byBeams.squares > 0)
    findings.push_back({NeverConverges, "Loads carried by beams",
                        "Forces of up to " + formatRounded(byBeams.largest) + " at " +
                            listPositions("node", byBeams.nodes) +
                            " are carried by beams, which have stiffness but no internal force, so that each step adds "
                            "the same displacements again: carry them by bars.",
                        byBeams.nodes});
  return findings;
}

Finding describeImbalance(const Project& solved, const SolveOutcome& outcome) {
  const Residual residual(solved, outcome);
  const Leftover& left = residual.leftover(Cause::Equilibrium);
  return {NeverConverges, "No equilibrium",
          "After " + std::to_string(outcome.norms.size()) + " steps forces of up to " + formatRounded(left.largest) +
              " remain" + (left.nodes.empty() ? "" : " at " + listPositions("node", left.nodes)) +
              ", so that the displacements are not those of equilibrium: reduce the load, or stiffen the structure "
              "there.",
          left.nodes};
}

}  // namespace gavrel
