# Sourced by the scripts in the project's folder: installs missing packages and builds presets.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# Installs what Packaging/debian-packages.txt names and this machine lacks. Does nothing when all is there.
installMissingPackages() {
  local package missing=() sudo=()
  local installed
  installed=$(dpkg-query -W -f='${Package} ${db:Status-Status}\n' 2>/dev/null | sed -n 's/ installed$//p')
  while read -r package; do
    grep -qxF "$package" <<<"$installed" || missing+=("$package")
  done < <(grep -v '^#' "$root/Packaging/debian-packages.txt")
  [ ${#missing[@]} -eq 0 ] && return
  echo "Installing ${missing[*]}" >&2
  [ "$(id -u)" -eq 0 ] || sudo=(sudo)
  "${sudo[@]}" apt-get update -qq >&2
  "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" </dev/null >&2
}

# Configures the preset $1 on first use and builds what has changed; further arguments go to the build.
build() {
  local preset=$1
  shift
  if [ ! -f "$root/build/$preset/build.ninja" ]; then
    (cd "$root" && cmake --preset "$preset") >&2
  fi
  cmake --build "$root/build/$preset" "$@" -- --quiet >&2
}
