#include <algorithm>
#include <cmath>

#include "DataModel/ArrayLengths.h"
#include "Diagnosis/StructureCheck.h"

namespace gavrel {

namespace {

using enum Finding::Consequence;
using Positions = std::vector<std::int64_t>;

/// Positions of the beams for which the predicate holds.
template <class Predicate>
Positions findBeams(const Project& project, Predicate&& predicate) {
  Positions found;
  const auto& beams = *project.beamElements;
  for (std::size_t i = 0; i < beams.size(); ++i)
    if (predicate(beams[i])) found.push_back(static_cast<std::int64_t>(i));
  return found;
}

bool isShort(const BeamElement& beam) {
  return length({beam.dXx, beam.dXy, beam.dXz}) <= zeroLength;
}

/// Whether the largest terms of the beam's stiffness, which are on the diagonal and always read, are numbers.
bool hasStiffness(const BeamElement& beam) {
  const double Lx3 = std::pow(beam.dXx, 3.0);
  const double terms[] = {
      beam.EA, beam.GJ, 12 * beam.EIy / Lx3, 12 * beam.EIz / Lx3, beam.EIy / beam.dXx, beam.EIz / beam.dXx};
  return std::ranges::all_of(terms, [](double term) { return std::isfinite(term); });
}

/// The same of a bar.
bool hasStiffness(const TrussElement& truss) {
  const double parts[] = {truss.dXx, truss.dXy, truss.dXz};
  return std::ranges::all_of(parts, [&truss](double part) { return std::isfinite(truss.EAL3 * part * part); });
}

Positions findBarsWithoutStiffness(const Project& project) {
  Positions found;
  for (std::size_t i = 0; i < project.trussElements->size(); ++i)
    if (!hasStiffness((*project.trussElements)[i])) found.push_back(static_cast<std::int64_t>(i));
  return found;
}

/// How many restraints a solve reads: of the nodes of bars the translations, of those of beams all directions.
std::int64_t countRestraintsRead(const Project& project) {
  std::int64_t read = 0;
  for (const TrussElement& truss : *project.trussElements)
    read = std::max(read, dofsPerNode * std::max(truss.startNodeId, truss.endNodeId) + 3);
  for (const BeamElement& beam : *project.beamElements)
    read = std::max(read, dofsPerNode * std::max(beam.startNodeId, beam.endNodeId) + dofsPerNode);
  return read;
}

std::optional<Finding> inspectArrays(const Project& project) {
  const std::int64_t restraints = countRestraintsRead(project);
  if (std::ssize(*project.F_I) < project.nI || std::ssize(*project.D_I) < restraints)
    return Finding{EndsProgram, "Missing loads or restraints",
                   "There are " + std::to_string(project.F_I->size()) + " loads and " +
                       std::to_string(project.D_I->size()) + " restraints, but a solve reads " +
                       std::to_string(project.nI) + " loads and the first " + std::to_string(restraints) +
                       " restraints, and ends the program: give each node six of both."};
  const auto& F = *project.F_I;
  // Surplus loads that are not zero have a finding of their own after the solve.
  const bool hasSurplusLoad = std::any_of(F.begin() + project.nI, F.end(), [](double load) { return load != 0; });
  std::string list;
  for (const auto& misfit : ArrayLengths::check(project).misfits)
    if (misfit.array != "F_I" || !hasSurplusLoad) list += (list.empty() ? "" : "; ") + misfit.text();
  if (list.empty()) return std::nullopt;
  return Finding{Doubtful, "Arrays that do not fit",
                 list + ", so that a load or a support may belong to the wrong node: correct the file."};
}

/// Positions of the elements whose stored extents, which a solve uses, are not those of their nodes.
template <class Element>
Positions findMisfits(const Project& project, const std::vector<Element>& elements) {
  constexpr double fit = 1e-6;  // of a length
  Positions found;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const Element& element = elements[i];
    const Vector3 stored{element.dXx, element.dXy, element.dXz};
    const auto start = project.getNodeCoordinates(element.startNodeId);
    const auto end = project.getNodeCoordinates(element.endNodeId);
    if (!start || !end) continue;
    const Vector3 gap = *start - *end;
    if (length(gap - stored) > fit * std::max(length(gap), length(stored)))
      found.push_back(static_cast<std::int64_t>(i));
  }
  return found;
}

}  // namespace

std::vector<Finding> inspectModel(const Project& project, const Connectivity& connectivity) {
  std::vector<Finding> findings;
  const auto addTrusses = [&](Finding::Consequence consequence, const char* title, const Positions& trusses,
                              const std::string& text) {
    if (!trusses.empty())
      findings.push_back({consequence, title, "With " + listPositions("bar", trusses) + " " + text, {}, trusses});
  };
  const auto addBeams = [&](Finding::Consequence consequence, const char* title, const Positions& beams,
                            const std::string& text) {
    if (!beams.empty())
      findings.push_back({consequence, title, "With " + listPositions("beam", beams) + " " + text, {}, {}, beams});
  };

  if (project.trussElements->empty() && project.beamElements->empty())
    return {{EndsProgram, "No elements",
             "The structure has neither bars nor beams, and a solve ends the program: join its nodes."}};
  const char* unknown =
      "a solve ends the program, since one of the ends is a node that does not exist: correct the file.";
  addTrusses(EndsProgram, "Unknown nodes", connectivity.trussesWithUnknownNodes, unknown);
  addBeams(EndsProgram, "Unknown nodes", connectivity.beamsWithUnknownNodes, unknown);
  if (!findings.empty()) return findings;  // the other inspections read the places of all nodes
  if (auto misfits = inspectArrays(project)) findings.push_back(std::move(*misfits));
  if (const auto& lonely = connectivity.nodesWithoutElements; !lonely.empty())
    findings.push_back(
        {EndsProgram, "Nodes without elements",
         "Nothing joins " + listPositions("node", lonely) +
             " to the structure, and a solve ends the program: join every node with a bar, or take it out of the file.",
         lonely});

  const auto without = [&](auto&& predicate) {
    return findBeams(project, [&](const BeamElement& beam) { return !hasStiffness(beam) && predicate(beam); });
  };
  addBeams(EndsProgram, "Beams without length", without(isShort),
           "a solve ends the program, since both ends lie in the same place: join other nodes.");
  addBeams(EndsProgram, "Beams across x",
           without([](const BeamElement& beam) { return !isShort(beam) && beam.dXx == 0; }),
           "a solve ends the program, since a beam's stiffness is formed with its extent along x, which is zero: use "
           "bars there.");
  addBeams(
      EndsProgram, "Beams without finite stiffness",
      without([](const BeamElement& beam) { return !isShort(beam) && beam.dXx != 0; }),
      "a solve ends the program, since the stiffness is too large or not a number: look at the section, the moduli, "
      "and the extent along x.");
  addTrusses(
      EndsProgram, "Bars without finite stiffness", findBarsWithoutStiffness(project),
      "a solve ends the program, since the stiffness is too large or not a number: look at the area, the modulus, "
      "and the places of the nodes.");
  addBeams(Doubtful, "Beams without length",
           findBeams(project, [](const BeamElement& beam) { return hasStiffness(beam) && isShort(beam); }),
           "both ends lie in the same place: join other nodes.");
  addBeams(Doubtful, "Beams the wrong way round",
           findBeams(project,
                     [](const BeamElement& beam) {
                       return !isShort(beam) && beam.dXx < 0 && (beam.EIy != 0 || beam.EIz != 0);
                     }),
           "the stiffness in bending is negative: let them start at the larger x.");
  addTrusses(Doubtful, "Bars without length", connectivity.zeroLengthTrusses,
             "nothing is carried, since both ends lie in the same place: join other nodes.");
  const char* unfitting = "a solve uses the stored extents, which are not those of the nodes: correct the file.";
  addTrusses(Doubtful, "Elements that do not fit their nodes", findMisfits(project, *project.trussElements), unfitting);
  addBeams(Doubtful, "Elements that do not fit their nodes", findMisfits(project, *project.beamElements), unfitting);
  const char* repeated =
      "the same two nodes are joined again, so that the stiffness counts twice: take one out of the "
      "file, unless you meant that.";
  addTrusses(Doubtful, "Repeated bars", connectivity.repeatedTrusses, repeated);
  addBeams(Doubtful, "Repeated beams", connectivity.repeatedBeams, repeated);
  return findings;
}

}  // namespace gavrel
