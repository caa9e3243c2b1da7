#include "Tests/Fuzz/Imported.h"

using namespace gavrel;

/// One table, or two with a zero byte between them.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string_view text = toText(data, size);
  const std::size_t end = text.find('\0');
  std::vector files{inputFolder().put("first.csv", text.substr(0, end))};
  if (end != text.npos) files.push_back(inputFolder().put("second.csv", text.substr(end + 1)));
  requireSoundImport(files, {});
  return 0;
}
