#include <algorithm>
#include <cmath>

#include "Diagnosis/StructureCheck.h"
#include "Platform/NumberText.h"

namespace {

using enum Finding::Consequence;
using Positions = std::vector<std::int64_t>;

double diagonalOf(const Project& project, std::int64_t dof) {
  return project.H_II.values[static_cast<std::size_t>(project.H_II.starts[static_cast<std::size_t>(dof)])];
}

/// Positions of the elements for which the predicate holds and one of whose nodes is marked.
template <class Element, class Predicate>
Positions elementsAt(const std::vector<bool>& marked, const std::vector<Element>& elements, Predicate&& predicate) {
  Positions found;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const bool touches = marked[static_cast<std::size_t>(elements[i].startNodeId)] ||
                         marked[static_cast<std::size_t>(elements[i].endNodeId)];
    if (touches && predicate(elements[i])) found.push_back(static_cast<std::int64_t>(i));
  }
  return found;
}

bool isCompressedNonLinear(const TrussElement& truss) {
  return truss.isNonLinear && truss.axialForce() < 0;
}

/// A direction's own stiffness is gone or negative; all such directions are looked at together.
Finding explainNotPositive(const Project& project, const SolveFault& fault) {
  std::vector<bool> marked(static_cast<std::size_t>(project.nodeCount()));
  for (std::int64_t dof = 0; dof < project.nI; ++dof)
    if (!(diagonalOf(project, dof) > 0)) marked[static_cast<std::size_t>(dof / dofsPerNode)] = true;
  const std::string where = "In step " + std::to_string(fault.step) + " the stiffness of node " +
                            std::to_string(*fault.dof / dofsPerNode) + " in " + directionOf(*fault.dof) + " becomes " +
                            numberText(diagonalOf(project, *fault.dof));
  const auto compressed = elementsAt(marked, *project.trussElements, isCompressedNonLinear);
  if (!compressed.empty())
    return {EndsProgram,
            "Compressed non-linear bars",
            where + ", since compression takes stiffness across non-linear bars, here " + listed("bar", compressed) +
                ", and a solve ends the program: make them linear.",
            markedOf(marked),
            compressed,
            {},
            true};
  const auto out = elementsAt(marked, *project.trussElements, [](const TrussElement& truss) { return truss.isOut(); });
  if (!out.empty())
    return {EndsProgram, "Compression-only bars have dropped out",
            where + ", since " + listed("bar", out) +
                " took tension and dropped out, and a solve ends the program: hold the node otherwise.",
            markedOf(marked), out};
  const auto turned = elementsAt(marked, *project.beamElements, [](const BeamElement& beam) { return beam.dXx < 0; });
  if (!turned.empty())
    return {EndsProgram,
            "Stiffness that is not positive",
            where + ", since " + listed("beam", turned) + (turned.size() == 1 ? " is" : " are") +
                " the wrong way round, and a solve ends the program: let the start be at the larger x.",
            markedOf(marked),
            {},
            turned};
  return {EndsProgram, "Stiffness that is not positive",
          where + ", and a solve ends the program: look for negative areas or moduli.", markedOf(marked)};
}

/// The structure as a whole has lost its stiffness somewhere.
Finding explainUnstable(const Project& project, std::int64_t dof, int step, Finding::Consequence consequence) {
  const std::int64_t node = dof / dofsPerNode;
  const std::string ending =
      consequence == EndsProgram ? ", and a solve ends the program: " : ", and the displacements mean nothing: ";
  if (step <= 1)
    return {consequence,
            "Mechanism",
            "Nothing holds node " + std::to_string(node) + " in " + directionOf(dof) +
                " against a movement of several nodes together" + ending + "brace or support it there.",
            {node}};
  std::vector<bool> marked(static_cast<std::size_t>(project.nodeCount()));
  marked[static_cast<std::size_t>(node)] = true;
  const auto compressed = elementsAt(marked, *project.trussElements, isCompressedNonLinear);
  return {
      consequence,
      "Loss of stability",
      "In step " + std::to_string(step) + " the structure loses its stiffness at node " + std::to_string(node) +
          " in " + directionOf(dof) + ", because it buckles or snaps through, or because bars there have dropped out" +
          ending + "reduce the load" +
          (compressed.empty() ? "" : ", or make the compressed non-linear " + listed("bar", compressed) + " linear") +
          ".",
      {node},
      compressed,
      {},
      !compressed.empty()};
}

Finding explainFault(const Project& project, const SolveFault& fault) {
  if (fault.kind == SolveFault::Kind::NotPositive) return explainNotPositive(project, fault);
  if (fault.kind == SolveFault::Kind::Unstable) return explainUnstable(project, *fault.dof, fault.step, EndsProgram);
  Positions nodes;
  if (fault.dof) nodes.push_back(*fault.dof / dofsPerNode);
  return {EndsProgram, "The matrix cannot be factorized",
          "In step " + std::to_string(fault.step) + " a solve ends the program: " + fault.what + ".", nodes};
}

/// Where the forces are that the solve has left over. A load on a support moves it, and what then pulls at its
/// neighbours is not theirs to answer for.
std::vector<Finding> explainResidual(const Project& project) {
  const auto entry = [](const std::vector<double>& array, std::int64_t i) {
    return array[static_cast<std::size_t>(i)];
  };
  double squares = 0;
  for (const double load : *project.F_I) squares += load * load;
  const double tolerated = Project::convergenceTolerance * std::sqrt(squares);
  if (!std::isfinite(tolerated)) return {};  // the loads themselves are at fault

  std::vector<bool> touchedByBeam(static_cast<std::size_t>(project.nodeCount()));
  for (const BeamElement& beam : *project.beamElements)
    for (const std::int64_t node : {beam.startNodeId, beam.endNodeId})
      touchedByBeam[static_cast<std::size_t>(node)] = true;

  Positions byBeams;
  Positions byNothing;
  Positions others;
  double largest = 0;
  bool supportsMove = false;
  for (std::int64_t dof = 0; dof < project.nI; ++dof) {
    const bool restrained = (*project.D_I)[static_cast<std::size_t>(dof)];
    const double left = std::abs(entry(project.R_I, dof));
    supportsMove = supportsMove || (restrained && left > 0);
    if (restrained || left <= tolerated) continue;
    const std::int64_t node = dof / dofsPerNode;
    const bool unanswered = entry(project.R_I, dof) == entry(*project.F_I, dof);
    Positions& nodes = touchedByBeam[static_cast<std::size_t>(node)] ? byBeams : unanswered ? byNothing : others;
    if (nodes.empty() || nodes.back() != node) nodes.push_back(node);
    if (!(left <= largest)) largest = left;
  }
  std::vector<Finding> findings;
  if (!byBeams.empty())
    findings.push_back(
        {NeverConverges, "Loads carried by beams",
         "A load at " + listed("node", byBeams) +
             " is carried by beams, which answer with stiffness but with no force, so that the solve adds "
             "its displacements anew in each step: carry it by bars.",
         byBeams});
  if (!byNothing.empty())
    findings.push_back({NeverConverges, "Loads that nothing resists",
                        "No element has stiffness in the direction of a load at " + listed("node", byNothing) +
                            ", so that the solver lends it some and moves it further in each step: brace it, or remove "
                            "the load.",
                        byNothing});
  if (!others.empty() && byNothing.empty() && !supportsMove)
    findings.push_back({NeverConverges, "No equilibrium",
                        "After " + std::to_string(Project::iterationLimit) + " steps forces of up to " +
                            numberText(largest) + " are left over at " + listed("node", others) +
                            ", so that the displacements are not those of equilibrium: reduce the load, or stiffen the "
                            "structure there.",
                        others});
  return findings;
}

}  // namespace

std::vector<Finding> inspectOutcome(const Project& solved, const SolveOutcome& outcome) {
  if (outcome.fault) return {explainFault(solved, *outcome.fault)};
  if (outcome.weakestDof) return {explainUnstable(solved, *outcome.weakestDof, 1, Meaningless)};
  const bool exhausted = std::ssize(outcome.norms) == Project::iterationLimit;
  if (exhausted && !(outcome.norms.back() < Project::convergenceTolerance)) return explainResidual(solved);
  return {};
}
