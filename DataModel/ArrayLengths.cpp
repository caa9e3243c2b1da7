#include "DataModel/ArrayLengths.h"

namespace gavrel {

namespace {

std::string formatCount(std::int64_t number, const std::string& one, const std::string& many) {
  return std::to_string(number) + " " + (number == 1 ? one : many);
}

}  // namespace

std::string ArrayLengths::Misfit::text() const {
  const std::int64_t nodes = wanted / (array == "X_I" ? 3 : dofsPerNode);
  return std::string(array) + " has " + formatCount(entries, "entry", "entries") + ", where " +
         formatCount(nodes, "node has ", "nodes have ") + std::to_string(wanted);
}

ArrayLengths ArrayLengths::check(const Project& project) {
  ArrayLengths lengths;
  const std::int64_t nodes = project.nodeCount();
  const auto compare = [&lengths](std::string_view array, std::int64_t entries, std::int64_t wanted) {
    if (entries != wanted) lengths.misfits.push_back({array, entries, wanted});
  };
  compare("X_I", std::ssize(*project.X_I), 3 * nodes);
  compare("F_I", std::ssize(*project.F_I), dofsPerNode * nodes);
  compare("D_I", std::ssize(*project.D_I), dofsPerNode * nodes);
  return lengths;
}

Result<std::vector<std::string>> fitArrays(Project& project) {
  const auto lengths = ArrayLengths::check(project);
  for (const auto& misfit : lengths.misfits)
    if (!misfit.isMissing())
      return Failure{misfit.text() +
                     ": remove the surplus from the project file first, or add the node that it belongs to"};
  std::vector<std::string> lines;
  for (const auto& misfit : lengths.misfits) {
    const auto wanted = static_cast<std::size_t>(misfit.wanted);
    if (misfit.array == "F_I") project.F_I.edit().resize(wanted, 0.0);
    if (misfit.array == "D_I") project.D_I.edit().resize(wanted, false);
    lines.push_back(misfit.text() + ": filled with " + (misfit.array == "F_I" ? "zeros." : "false."));
  }
  return lines;
}

}  // namespace gavrel
