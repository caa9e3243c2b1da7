#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Tests/TemporaryFolder.h"

namespace gavrel {

/// Ends the process, which the fuzzer reports with the input, unless this holds.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

inline std::string_view toText(const unsigned char* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// Where the inputs are written for what reads files.
inline const TemporaryFolder& inputFolder() {
  static const TemporaryFolder folder;
  return folder;
}

}  // namespace gavrel
