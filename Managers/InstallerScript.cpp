#include "Managers/InstallerScript.h"

#include <algorithm>

#include "Managers/TreeDigest.h"

namespace gavrel {

namespace {

/// A path as one word of the shell, quoted so that it may have any characters.
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
                                 const std::filesystem::path& executable, const std::string& digest) {
  return "#!/bin/bash\nC=" + shellWord(current) + "\nN=" + shellWord(replacement) +
         "\nexecutable=" + shellWord(executable) + "\nchecked=" + shellWord(digest) + "\ndigest() { " +
         std::string(treeDigestCommand) + "; }" + R"script(
variables=("${!GAVREL_OWN_@}")
[ ${#variables[@]} -eq 0 ] || export -n "${variables[@]}"  # tools have no use for them, and the room for arguments is short
open() {
    [ -e "$C.new" ] || [ -e "$C.old" ] || rm -f -- "$C.update"
    local variable own=()
    for variable in "${variables[@]}"; do own+=("${!variable}"); done
    # Without nice, which changes nothing here, env would take a path with "=" for a variable.
    exec /usr/bin/env -i -- "${own[@]}" /usr/bin/nice -n 0 -- "$C/$executable" "$@" 9<&-
}
# What tells whose it is goes last, so that the rest of a removal that is cut off is still known.
remove() {
    (cd -- "$1" && find . -mindepth 1 ! -path ./Info.plist -delete)
    rm -rf -- "$1"
}
giveUp() {
    local reason=${1:-A tool was ended from outside.}
    open --update-failed="${reason:0:1000}"
}
fail() {
    remove "$C.new"
    giveUp "$1"
}
sleep 2
reason=$(mkdir -- "$C.new" 2>&1) || giveUp "$reason"
: >"$C.update"  # what is left over is ours
exec 9<"$C.new"
flock -n 9
cp -- "$N/Info.plist" "$C.new/" 2>/dev/null
reason=$(cp -R -- "$N/." "$C.new/" 2>&1) || fail "$reason"
chmod -R 755 -- "$C.new"
[ -x "$C.new/$executable" ] || fail "The copy of the update cannot be executed."
[ "$(digest "$C.new")" = "$checked" ] || fail "The copy of the update is not what was checked."
reason=$(sync -f -- "$C.new" 2>&1) || fail "$reason"
reason=$(mv -T -- "$C" "$C.old" 2>&1) || fail "$reason"
if reason=$(mv -T -- "$C.new" "$C" 2>&1); then
    sync -f -- "$C" && remove "$C.old"
    open
else
    mv -T -- "$C.old" "$C"
    fail "$reason"
fi)script";
}

}  // namespace gavrel
