#include "Managers/BundleInfo.h"
#include "Tests/Fuzz/Require.h"

using namespace gavrel;

/// Texts are read only from what looks like XML, and without what XML cannot hold.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string_view text = toText(data, size);
  const auto texts = BundleInfo::parseTexts(text);
  require(texts.empty() || (text.find("dict") != text.npos && text.find("key") != text.npos), "texts from nowhere");
  for (const auto& [key, value] : texts)
    require(key.find('\0') == key.npos && value.size() <= size, "a text that is not in the list");
  return 0;
}
