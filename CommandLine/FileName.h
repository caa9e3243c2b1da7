#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace gavrel {

/// To be given to the `check` of an option that names a file: refuses an empty text, such as that of a variable which a
/// script has not set. It would be taken for an option that is not there.
[[nodiscard]] inline CLI::Validator fileName() {
  return {[](const std::string& text) -> std::string { return text.empty() ? "a file name is empty" : ""; }, ""};
}

}  // namespace gavrel
