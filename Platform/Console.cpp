#include "Platform/Console.h"

#include <cstdio>
#include <string>

namespace gavrel {

void printLine(std::string_view text) {
  const std::string line = std::string(text) + "\n";
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fflush(stdout);
}

void printWarning(std::string_view text) {
  const std::string line = "Warning: " + std::string(text) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace gavrel
