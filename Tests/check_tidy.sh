#!/usr/bin/env bash
# Runs clang-tidy over the sources that differ from the branch main (on main itself: from the commit before), and over those
# that include a header which does. Over all with --all, and where git knows of nothing to compare with.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/../Packaging/prepare.sh"
cd "$root"

all() {
  find . \( -name build -o -name '.?*' \) -prune -o -name '*.cpp' -printf '%P\n'
}

# Lists the sources and headers that differ from the commit $1, then the sources that include one of those headers.
changed() {
  local files headers
  files=$(git diff --name-only --diff-filter=d "$1" -- '*.cpp' '*.h' && git ls-files --others --exclude-standard -- '*.cpp' '*.h')
  headers=$(sed -nE 's|^(.*/)?([^/]+)\.h$|#include "(.*/)?\2\\.h"|p' <<<"$files")
  echo "$files"
  [ -z "$headers" ] || all | xargs -d '\n' grep -lE "$headers" || true
}

base=$(git merge-base HEAD main 2>/dev/null || true)
[ -n "$base" ] && [ "$base" != "$(git rev-parse HEAD)" ] || base=HEAD~1
if [ "${1:-}" = --all ] || ! git rev-parse --quiet --verify "$base" >/dev/null 2>&1; then
  sources=$(all)
else
  sources=$(changed "$base" | sort -u | sed -n '/\.cpp$/p')
fi

# Of this build only the commands are wanted: nothing is compiled.
configure tidy
echo "clang-tidy over $(wc -w <<<"$sources") sources"
xargs -r -n 1 -P "$(nproc)" clang-tidy --quiet -p "$root/build/tidy" <<<"$sources" 2>&1 | sed -uE '/^[0-9]+ warnings? .*generated\.$/d'
