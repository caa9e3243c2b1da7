#include <algorithm>
#include <cmath>
#include <utility>

#include "DataModel/Solver.h"
#include "Diagnosis/StructureCheck.h"

namespace gavrel {

namespace {

using enum Finding::Consequence;
using Positions = std::vector<std::int64_t>;

double readDiagonal(const Project& project, std::int64_t dof) {
  return project.H_II.values[static_cast<std::size_t>(project.H_II.starts[static_cast<std::size_t>(dof)])];
}

/// Positions of the elements for which the predicate holds and one of whose nodes is marked.
template <class Element, class Predicate>
Positions findElementsAt(const std::vector<bool>& marked, const std::vector<Element>& elements, Predicate&& predicate) {
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

bool isNegative(const TrussElement& truss) {
  return truss.EAL3 < 0;
}

/// A beam must start at the larger x and at the node with the lower number; otherwise its matrix reduces stiffness.
bool isTurned(const BeamElement& beam) {
  return (beam.EIy != 0 || beam.EIz != 0) && (beam.dXx < 0 || beam.startNodeId > beam.endNodeId);
}

bool isNegativeBeam(const BeamElement& beam) {
  return beam.EA < 0 || beam.GJ < 0 || beam.EIy < 0 || beam.EIz < 0;
}

std::string describeBarsOut(const Positions& bars) {
  return listPositions("bar", bars) + " took tension and dropped out";
}

/// Where a solve lost its stiffness, and what that leads to.
struct Loss {
  int step;
  std::int64_t dof;
  Finding::Consequence consequence;
  Positions trussesOut;  // in that step
};

/// Whether the loss disappears when no stiffness is negative and all beams are the right way round.
template <class Predicate>
bool disappearsWhenRighted(const Project& project, int step, Predicate&& concerns) {
  const auto righted = project.copy();
  for (TrussElement& truss : righted->trussElements.edit()) truss.EAL3 = std::abs(truss.EAL3);
  for (BeamElement& beam : righted->beamElements.edit()) {
    for (double* factor : {&beam.EA, &beam.EIz, &beam.EIy, &beam.GJ, &beam.dXx}) *factor = std::abs(*factor);
    if (beam.startNodeId > beam.endNodeId) std::swap(beam.startNodeId, beam.endNodeId);
  }
  const auto outcome = Solver(*righted).Solve({}, step);
  return !(outcome.fault && outcome.fault->dof && concerns(*outcome.fault->dof)) &&
         !(outcome.weakness && concerns(outcome.weakness->dof));
}

/// Elements whose stiffness is not positive from the start, if there are some at the marked nodes.
std::optional<Finding> blameElements(const Project& project, const std::vector<bool>& marked, const std::string& where,
                                     const std::string& ending, const Positions& nodes,
                                     Finding::Consequence consequence) {
  const auto blame = [&](Positions trusses, Positions beams, const std::string& why, const char* advice) {
    return Finding{consequence,
                   "Stiffness that is not positive",
                   where + ", since " + why + ending + advice,
                   nodes,
                   std::move(trusses),
                   std::move(beams)};
  };
  const auto are = [](const char* kind, const Positions& found, const char* one, const char* many) {
    return listPositions(kind, found) + (found.size() == 1 ? one : many);
  };
  if (const auto trusses = findElementsAt(marked, *project.trussElements, isNegative); !trusses.empty())
    return blame(trusses, {}, are("bar", trusses, " has", " have") + " a negative stiffness",
                 "correct the area or the modulus.");
  if (const auto beams = findElementsAt(marked, *project.beamElements, isNegativeBeam); !beams.empty())
    return blame({}, beams, are("beam", beams, " has", " have") + " a negative stiffness",
                 "correct the section or the moduli.");
  if (const auto beams = findElementsAt(marked, *project.beamElements, isTurned); !beams.empty())
    return blame({}, beams, are("beam", beams, " is", " are") + " the wrong way round",
                 "let the start be at the larger x and have the lower number.");
  return std::nullopt;
}

/// A diagonal entry is zero or negative; all such directions are looked at together. The solver had filled diagonals
/// without stiffness with the first stored value, which belongs to node 0 along x.
Finding explainNotPositive(const Project& project, const SolveFault& fault) {
  const std::string ending = describeEnding(EndsProgram);
  const bool fillIsZero = std::abs(readDiagonal(project, 0)) < Project::zeroPivot && !(readDiagonal(project, 0) > 0);
  std::vector<bool> marked(static_cast<std::size_t>(project.nodeCount()));
  for (std::int64_t dof = 0; dof < project.nI; ++dof) {
    const bool isConcerned = fillIsZero ? dof == 0 : readDiagonal(project, dof) <= -Project::zeroPivot;
    if (isConcerned) marked[static_cast<std::size_t>(dof / dofsPerNode)] = true;
  }
  const Positions nodes = collectMarked(marked);
  const std::string where = "In step " + std::to_string(fault.step) + " the stiffness of node " +
                            std::to_string(*fault.dof / dofsPerNode) + " in " + describeDirection(*fault.dof) +
                            " becomes " + formatRounded(readDiagonal(project, *fault.dof));
  if (auto blamed = blameElements(project, marked, where, ending, nodes, EndsProgram);
      blamed && disappearsWhenRighted(project, fault.step, [&fault](std::int64_t dof) { return dof == *fault.dof; }))
    return *blamed;
  const auto compressed = findElementsAt(marked, *project.trussElements, isCompressedNonLinear);
  if (!compressed.empty())
    return {EndsProgram,
            "Compressed non-linear bars",
            where + ", since compression takes stiffness across non-linear bars, here " +
                listPositions("bar", compressed) + ending + "make them linear.",
            nodes,
            compressed,
            {},
            compressed};
  const auto out =
      findElementsAt(marked, *project.trussElements, [](const TrussElement& truss) { return truss.isOut(); });
  if (!out.empty())
    return {EndsProgram, "Compression-only bars have dropped out",
            where + ", since " + describeBarsOut(out) + ending + "hold the node in another way.", nodes, out};
  if (fillIsZero)
    return {EndsProgram, "No stiffness of node 0 along x",
            "In step " + std::to_string(fault.step) +
                " no element gives node 0 stiffness along x, which the solver uses for all directions without any" +
                ending + "let an element of node 0 run along x.",
            nodes};
  return {EndsProgram, "Stiffness that is not positive", where + ending + "stiffen the structure there.", nodes};
}

/// The structure as a whole has lost its stiffness somewhere.
Finding explainLoss(const Project& project, const Loss& loss, const std::vector<std::int64_t>& partOf) {
  const std::int64_t node = loss.dof / dofsPerNode;
  const std::string place = "node " + std::to_string(node) + " in " + describeDirection(loss.dof);
  const std::string ending = describeEnding(loss.consequence);
  const std::string step = "In step " + std::to_string(loss.step) + " ";

  std::vector<bool> inPart(partOf.size());
  for (std::size_t i = 0; i < partOf.size(); ++i) inPart[i] = partOf[i] == partOf[static_cast<std::size_t>(node)];
  if (auto blamed = blameElements(project, inPart, step + "the structure loses its stiffness at " + place, ending,
                                  {node}, loss.consequence);
      blamed && disappearsWhenRighted(project, loss.step, [&inPart](std::int64_t dof) {
        return inPart[static_cast<std::size_t>(dof / dofsPerNode)];
      }))
    return *blamed;
  if (loss.step <= 1)
    return {loss.consequence,
            "Mechanism",
            "Nothing holds " + place + " against a movement of several nodes together" + ending +
                "brace or support it there.",
            {node}};

  Positions out;
  for (const std::int64_t position : loss.trussesOut)
    if (inPart[static_cast<std::size_t>((*project.trussElements)[static_cast<std::size_t>(position)].startNodeId)])
      out.push_back(position);
  std::vector<bool> marked(inPart.size());
  marked[static_cast<std::size_t>(node)] = true;
  auto compressed = findElementsAt(marked, *project.trussElements, isCompressedNonLinear);
  if (compressed.empty()) compressed = findElementsAt(inPart, *project.trussElements, isCompressedNonLinear);
  if (compressed.empty() && !out.empty())
    return {loss.consequence,
            "Compression-only bars have dropped out",
            step + "nothing holds " + place + " any more, since " + describeBarsOut(out) + ending +
                "brace it in another way.",
            {node},
            out};
  Positions concerned = compressed;
  concerned.insert(concerned.end(), out.begin(), out.end());
  return {
      loss.consequence,
      "Loss of stability",
      step + "the structure loses its stiffness at " + place + ", because it buckles or snaps through" +
          (out.empty() ? "" : ", or because " + describeBarsOut(out)) + ending + "reduce the load" +
          (compressed.empty() ? ""
                              : ", or make the compressed non-linear " + listPositions("bar", compressed) + " linear") +
          ".",
      {node},
      concerned,
      {},
      compressed};
}

Finding explainFault(const SolveFault& fault) {
  Positions nodes;
  if (fault.dof) nodes.push_back(*fault.dof / dofsPerNode);
  return {EndsProgram, "The matrix cannot be factorized",
          "In step " + std::to_string(fault.step) + " a solve ends the program: " + fault.what + ".", nodes};
}

}  // namespace

std::vector<Finding> inspectStiffness(const Project& solved, const SolveOutcome& outcome,
                                      const Connectivity& connectivity, const Freedom& freedom,
                                      Finding::Consequence ofLoss) {
  std::vector<bool> isLoose(static_cast<std::size_t>(solved.nodeCount()));
  for (const Freedom::Part& part : freedom.parts)
    for (const std::int64_t node : part.nodes) isLoose[static_cast<std::size_t>(node)] = true;
  const auto partAt = [&](std::int64_t dof) {
    return connectivity.partOf[static_cast<std::size_t>(dof / dofsPerNode)];
  };

  std::vector<Finding> findings;
  const auto& weakness = outcome.weakness;
  const auto& fault = outcome.fault;
  // A part that has lost its stiffness before has moved away, so that its later fault says nothing more.
  const bool weakFirst = weakness && fault && fault->dof && partAt(weakness->dof) == partAt(*fault->dof);
  bool looseEnds = false;
  if (fault && !weakFirst) {
    using Kind = SolveFault::Kind;
    if (fault->dof && isLoose[static_cast<std::size_t>(*fault->dof / dofsPerNode)] && fault->kind != Kind::NotFinite)
      looseEnds = true;
    else if (fault->kind == Kind::NotPositive)
      findings.push_back(explainNotPositive(solved, *fault));
    else if (fault->kind == Kind::Unstable)
      findings.push_back(
          explainLoss(solved, {fault->step, *fault->dof, EndsProgram, solved.findBarsOut()}, connectivity.partOf));
    else
      findings.push_back(explainFault(*fault));
  }
  if (weakness) {
    if (isLoose[static_cast<std::size_t>(weakness->dof / dofsPerNode)])
      looseEnds = looseEnds || weakFirst;
    else
      findings.push_back(explainLoss(solved,
                                     {weakness->step, weakness->dof,
                                      weakFirst         ? EndsProgram
                                      : weakness->lasts ? ofLoss
                                                        : Doubtful,
                                      weakness->trussesOut},
                                     connectivity.partOf));
  }
  if (!freedom.parts.empty()) findings.push_back(freedom.describe(solved, looseEnds ? EndsProgram : ofLoss));
  return findings;
}

}  // namespace gavrel
