#!/usr/bin/env bash
# Makes the packages of the build in folder $1 and checks them with the distribution's own tools.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
build=$1
share=Packaging/share

(cd "$build" && cpack >cpack.log) || { cat "$build/cpack.log"; exit 1; }
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
lintian --fail-on error,warning "$build/packages/gavrel_${version}_$(dpkg --print-architecture).deb"
desktop-file-validate "$share/gavrel.desktop"
appstreamcli validate --no-net --no-color "$share/org.gavrel.gavrel.metainfo.xml"

# The version also stands in texts that are not generated.
for text in "$share/org.gavrel.gavrel.metainfo.xml:<release version=\"$version\"" \
  "$share/gavrel.1:\"Gavrel $version\"" "$share/gavrel-cli.1:\"Gavrel $version\""; do
  grep -qF "${text#*:}" "${text%%:*}" || { echo "${text%%:*} does not name version $version"; exit 1; }
done
