#include <cstdio>
#include <cstdlib>
#include <string>

#include "DataModel/ProjectFile.h"
#include "Platform/JsonFault.h"

namespace {

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

}  // namespace

/// Whatever the bytes, reading a project ends with a reason or with a project that survives writing and reading.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::size_t skipped = text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
  const bool isJson = !findJsonFault(std::string_view(text).substr(skipped));

  const auto project = decodeProject(text);
  if (!project) {
    require(!project.failure().reason.empty(), "a failure without a reason");
    require(isJson || project.failure().reason.starts_with("not valid JSON at line "),
            "no place for a fault of the text");
    return 0;
  }
  require(isJson, "a project from a text that is not JSON");
  const auto written = encodeProject(**project);
  require(static_cast<bool>(written), "a project that was read cannot be written");
  const auto again = decodeProject(*written);
  require(static_cast<bool>(again), "a project that was written cannot be read");
  const auto rewritten = encodeProject(**again);
  require(rewritten && *rewritten == *written, "the project changed on its way through a file");
  return 0;
}
