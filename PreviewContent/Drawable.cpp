#include "PreviewContent/Drawable.h"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace gavrel {

namespace {

bool canBeLookedUp(std::int64_t node) {
  return node >= 0 && node <= (std::numeric_limits<std::int64_t>::max() - 2) / 3;
}

template <class Element>
std::optional<Failure> inspect(const std::vector<Element>& elements, const std::string& list) {
  for (std::size_t i = 0; i < elements.size(); ++i)
    for (const std::int64_t node : {elements[i].startNodeId, elements[i].endNodeId})
      if (!canBeLookedUp(node)) return Failure{list + "[" + std::to_string(i) + "] names node " + std::to_string(node)};
  return std::nullopt;
}

}  // namespace

std::optional<Failure> whyNotDrawable(const Project& project) {
  if (auto fault = inspect(*project.trussElements, "trussElements")) return fault;
  return inspect(*project.beamElements, "beamElements");
}

}  // namespace gavrel
