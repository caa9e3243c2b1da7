#include <algorithm>
#include <cmath>

#include "Diagnosis/StructureCheck.h"

namespace {

using enum Finding::Consequence;
using Positions = std::vector<std::int64_t>;

/// Beams for which the predicate of the chord's x component, start minus end, holds; those without length are left out.
template <class Predicate>
Positions beamsWhere(const Project& project, Predicate&& predicate) {
  Positions found;
  const auto& beams = *project.beamElements;
  for (std::size_t i = 0; i < beams.size(); ++i) {
    const BeamElement& beam = beams[i];
    if (length({beam.dXx, beam.dXy, beam.dXz}) > zeroLength && predicate(beam.dXx))
      found.push_back(static_cast<std::int64_t>(i));
  }
  return found;
}

/// Nodes that carry a load in a restrained direction.
Positions nodesLoadedAgainstRestraint(const Project& project) {
  Positions found;
  const auto& F = *project.F_I;
  const auto& D = *project.D_I;
  for (std::size_t dof = 0; dof < F.size() && dof < D.size(); ++dof) {
    const auto node = static_cast<std::int64_t>(dof) / dofsPerNode;
    if (D[dof] && F[dof] != 0 && (found.empty() || found.back() != node)) found.push_back(node);
  }
  return found;
}

/// Nodes with a coordinate or a load that is infinite or not a number.
Positions nodesWithoutNumbers(const Project& project) {
  std::vector<bool> marked(static_cast<std::size_t>(project.nodeCount()));
  const auto mark = [&marked](const std::vector<double>& array, std::size_t perNode) {
    for (std::size_t i = 0; i < array.size() && i / perNode < marked.size(); ++i)
      if (!std::isfinite(array[i])) marked[i / perNode] = true;
  };
  mark(*project.X_I, 3);
  mark(*project.F_I, dofsPerNode);
  return markedOf(marked);
}

Finding missingEntries(const Project& project) {
  return {EndsProgram, "Missing loads or restraints",
          "There are " + std::to_string(project.F_I->size()) + " loads and " + std::to_string(project.D_I->size()) +
              " restraints for " + std::to_string(project.nI) +
              " directions, and a solve ends the program: give each node six of both."};
}

}  // namespace

std::vector<Finding> inspectModel(const Project& project, const Connectivity& connectivity) {
  std::vector<Finding> findings;
  const auto add = [&](Finding finding) { findings.push_back(std::move(finding)); };
  const auto addTrusses = [&](Finding::Consequence consequence, const char* title, const Positions& trusses,
                              const std::string& text) {
    if (!trusses.empty()) add({consequence, title, "With " + listed("bar", trusses) + " " + text, {}, trusses});
  };
  const auto addBeams = [&](Finding::Consequence consequence, const char* title, const Positions& beams,
                            const std::string& text) {
    if (!beams.empty()) add({consequence, title, "With " + listed("beam", beams) + " " + text, {}, {}, beams});
  };

  if (project.trussElements->empty() && project.beamElements->empty())
    return {{EndsProgram, "No elements",
             "The structure has neither bars nor beams, and a solve ends the program: join its nodes."}};
  if (std::ssize(*project.F_I) < project.nI || std::ssize(*project.D_I) < project.nI) add(missingEntries(project));
  if (const auto nodes = nodesWithoutNumbers(project); !nodes.empty())
    add({Meaningless, "Numbers that are none",
         "A coordinate or a load of " + listed("node", nodes) +
             " is infinite or not a number, and a solve ends the program or means nothing: enter a number.",
         nodes});
  const char* unknown =
      "a solve ends the program, since one of the ends is a node that does not exist: correct the file.";
  addTrusses(EndsProgram, "Unknown nodes", connectivity.trussesWithUnknownNodes, unknown);
  addBeams(EndsProgram, "Unknown nodes", connectivity.beamsWithUnknownNodes, unknown);
  if (const auto& lonely = connectivity.nodesWithoutElements; !lonely.empty())
    add({EndsProgram, "Nodes without elements",
         "Nothing joins " + listed("node", lonely) +
             " to the structure, and a solve ends the program: join every node with a bar, or take it out of the file.",
         lonely});
  addBeams(EndsProgram, "Beams without length", connectivity.zeroLengthBeams,
           "a solve ends the program, since both ends lie in the same place: join other nodes.");
  addBeams(
      EndsProgram, "Beams across x", beamsWhere(project, [](double x) { return x == 0; }),
      "a solve ends the program, since a beam's stiffness is formed with its extent along x, which is zero: use bars "
      "there.");
  addBeams(Meaningless, "Beams the wrong way round", beamsWhere(project, [](double x) { return x < 0; }),
           "the stiffness in bending is negative, and a solve ends the program or means nothing: let them start at the "
           "larger x.");
  addTrusses(Doubtful, "Bars without length", connectivity.zeroLengthTrusses,
             "nothing is carried, since both ends lie in the same place: join other nodes.");
  const char* repeated =
      "the same two nodes are joined again, so that the stiffness counts twice: take one out of the "
      "file, unless you meant that.";
  addTrusses(Doubtful, "Repeated bars", connectivity.repeatedTrusses, repeated);
  addBeams(Doubtful, "Repeated beams", connectivity.repeatedBeams, repeated);

  if (const auto nodes = nodesLoadedAgainstRestraint(project); !nodes.empty())
    add({NeverConverges, "Loads on supports",
         "A restrained direction of " + listed("node", nodes) +
             " carries a load, which moves it further in each step, and the solve never converges: remove the load or "
             "the restraint.",
         nodes});
  if (std::ranges::all_of(*project.F_I, [](double load) { return load == 0; }))
    add({NeverConverges, "No loads",
         "Nothing loads the structure, so that the solve runs all its steps, prints nan, and moves nothing: load a "
         "node."});
  return findings;
}
