#include "Platform/Fatal.h"

#include <cstdio>
#include <cstdlib>
#include <string>

void fatal(std::string_view what) {
  std::fflush(stdout);
  const std::string line = "Fatal error: " + std::string(what) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::fflush(stderr);
  std::abort();
}

void fatalIndex(std::string_view array, std::int64_t index, std::int64_t size) {
  fatal("index " + std::to_string(index) + " is outside " + std::string(array) + ", which has " + std::to_string(size) +
        " entries");
}
