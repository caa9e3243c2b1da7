#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace gavrel {

/// A validator for the `check` of an option that names a file. It refuses an empty text, such as that of a variable
/// which a script has not set, since the commands take it for an option that was not given.
[[nodiscard]] inline CLI::Validator fileName() {
  return {[](const std::string& text) -> std::string { return text.empty() ? "a file name is empty" : ""; }, ""};
}

}  // namespace gavrel
