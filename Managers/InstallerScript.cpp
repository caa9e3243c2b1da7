#include "Managers/InstallerScript.h"

#include <algorithm>

namespace {

/// A path as one word of the shell that stands for itself, whatever characters it has.
std::string shellWord(const std::filesystem::path& path) {
  std::string word = "'";
  for (const char c : path.string()) word += c == '\'' ? "'\\''" : std::string(1, c);
  return word + "'";
}

}  // namespace

std::optional<std::string> firstAppEntry(const std::vector<std::string>& names) {
  const auto found =
      std::ranges::find(names, ".app", [](const std::filesystem::path& name) { return name.extension(); });
  return found == names.end() ? std::nullopt : std::optional(*found);
}

std::string bundleInstallerScript(const std::filesystem::path& current, const std::filesystem::path& replacement) {
  const std::string C = current.string();
  const std::string N = replacement.string();
  const std::string P = current.parent_path().string();
  return "#!/bin/bash\nsleep 2\nmv \"" + C + "\" \"" + C + ".old\"\ncp -R \"" + N + "\" \"" + P +
         "/\"\nif [ $? -eq 0 ]; then\n    rm -rf \"" + C + ".old\"\n    chmod -R 755 \"" + C +
         "\"\n    xattr -dr com.apple.quarantine \"" + C + "\"\n    open \"" + C + "\"\nelse\n    mv \"" + C +
         ".old\" \"" + C + "\"\nfi";
}

std::string linuxInstallerScript(const std::filesystem::path& current, const std::filesystem::path& replacement,
                                 const std::filesystem::path& executable) {
  return "#!/bin/bash\nC=" + shellWord(current) + "\nN=" + shellWord(replacement) +
         "\nP=" + shellWord(current.parent_path()) + "\nprogram=" + shellWord(current / executable) + R"(
open() { exec "$program" "$@"; }
sleep 2
reason=$(mv -T -- "$C" "$C.old" 2>&1) || open --update-failed="${reason:0:1000}"
reason=$(cp -R -- "$N" "$P/" 2>&1)
if [ $? -eq 0 ]; then
    rm -rf -- "$C.old"
    chmod -R 755 -- "$C"
    open
else
    rm -rf -- "$C"
    mv -T -- "$C.old" "$C"
    open --update-failed="${reason:0:1000}"
fi)";
}
