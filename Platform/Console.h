#pragma once

#include <string_view>

namespace gavrel {

/// Writes `text` and a newline to standard output and flushes it, so that a reader at the other end of a pipe sees
/// every line at once.
void printLine(std::string_view text);

/// Writes "Warning: ", `text` and a newline to standard error.
void printWarning(std::string_view text);

}  // namespace gavrel
