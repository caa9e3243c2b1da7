#include "Diagnosis/Finding.h"

#include "Platform/NumberText.h"

namespace gavrel {

bool isSerious(const Finding& finding) {
  return finding.consequence != Finding::Consequence::Doubtful;
}

std::string_view describeConsequence(Finding::Consequence consequence) {
  switch (consequence) {
    case Finding::Consequence::EndsProgram:
      return "Ends the program";
    case Finding::Consequence::NeverConverges:
      return "Never converges";
    case Finding::Consequence::Meaningless:
      return "Means nothing";
    case Finding::Consequence::Doubtful:
      break;
  }
  return "Doubtful";
}

std::string describeEnding(Finding::Consequence consequence) {
  switch (consequence) {
    case Finding::Consequence::EndsProgram:
      return ", and a solve ends the program: ";
    case Finding::Consequence::NeverConverges:
      return ", and the solve never converges: ";
    case Finding::Consequence::Meaningless:
      return ", and the displacements mean nothing: ";
    case Finding::Consequence::Doubtful:
      break;
  }
  return ", but a later step recovers it: ";
}

std::string listPositions(std::string_view one, const std::vector<std::int64_t>& positions) {
  constexpr std::size_t longest = 4;
  std::string list(one);
  if (positions.size() > 1) list += "s";
  const std::size_t named = positions.size() <= longest + 1 ? positions.size() : longest;
  for (std::size_t i = 0; i < named; ++i) {
    const bool last = i > 0 && i + 1 == positions.size();
    list += (last ? " and " : i > 0 ? ", " : " ") + std::to_string(positions[i]);
  }
  if (named < positions.size()) list += " and " + std::to_string(positions.size() - named) + " more";
  return list;
}

std::string formatRounded(double number) {
  constexpr int digits = 4;
  return roundedNumberText(number, digits);
}

std::vector<std::int64_t> collectMarked(const std::vector<bool>& marked) {
  std::vector<std::int64_t> positions;
  for (std::size_t i = 0; i < marked.size(); ++i)
    if (marked[i]) positions.push_back(static_cast<std::int64_t>(i));
  return positions;
}

}  // namespace gavrel
