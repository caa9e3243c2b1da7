# Sourced by the scripts in the project's folder: installs missing packages, configures and builds presets.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# Installs the packages of the given lists in Packaging/ that this machine lacks.
installMissingPackages() {
  local package missing=() sudo=()
  local installed
  installed=$(dpkg-query -W -f='${Package} ${db:Status-Status}\n' 2>/dev/null | sed -n 's/ installed$//p')
  while read -r package; do
    grep -qxF "$package" <<<"$installed" || missing+=("$package")
  done < <(cd "$root/Packaging" && cat -- "$@" | grep -v '^#')
  [ ${#missing[@]} -eq 0 ] && return
  echo "Installing ${missing[*]}" >&2
  [ "$(id -u)" -eq 0 ] || sudo=(sudo)
  "${sudo[@]}" apt-get update -qq >&2
  "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" </dev/null >&2
}

# Configures the preset $1; further arguments go to cmake.
configure() {
  (cd "$root" && cmake --preset "$@") >&2
}

# Builds what has changed since the preset $1 was built; further arguments go to the build.
build() {
  local preset=$1
  shift
  cmake --build "$root/build/$preset" "$@" -- --quiet >&2
}
