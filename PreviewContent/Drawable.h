#pragma once

#include <optional>

#include "DataModel/Project.h"
#include "Platform/Result.h"

namespace gavrel {

/// Why drawing this project ends the process, if it does: an element names a node whose number is negative, or too
/// large for its entries to be numbered. One that is merely past the last node is drawn without the element.
[[nodiscard]] std::optional<Failure> whyNotDrawable(const Project& project);

}  // namespace gavrel
