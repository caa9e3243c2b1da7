#include "Platform/Fatal.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

namespace gavrel {

namespace {

std::function<void(std::string_view)>& keeper() {
  static std::function<void(std::string_view)> keep;
  return keep;
}

}  // namespace

void onFatal(std::function<void(std::string_view line)> keep) {
  keeper() = std::move(keep);
}

void fatal(std::string_view what) {
  std::fflush(stdout);
  const std::string line = "Fatal error: " + std::string(what);
  std::fwrite((line + "\n").data(), 1, line.size() + 1, stderr);
  std::fflush(stderr);
  if (const auto keep = std::exchange(keeper(), {})) keep(line);  // once only, in case it calls fatal itself
  std::abort();
}

void fatalIndex(std::string_view array, std::int64_t index, std::int64_t size) {
  fatal("index " + std::to_string(index) + " is outside " + std::string(array) + ", which has " + std::to_string(size) +
        " entries");
}

}  // namespace gavrel
