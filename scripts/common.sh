# Sourced by the scripts beside it: the way to the root, the packages, and one way to build.

cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
jobs=$(nproc)

say() { printf '\n== %s\n' "$*"; }

# need_packages PURPOSE...: installs what is missing of the packages for these purposes; does nothing when all
# is there.
need_packages() {
    local purposes missing=() package
    purposes=$(IFS='|'; echo "$*")
    for package in $(sed -nE "s/^($purposes) //p" scripts/packages.txt); do
        dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null | grep -q '^ii' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    say "installing: ${missing[*]}"
    local root=()
    [ "$(id -u)" -eq 0 ] || root=(sudo -n)
    "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q update
    "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q install -y --no-install-recommends "${missing[@]}"
}

# build PRESET CMAKE-ARGUMENT...: configures and builds build/PRESET, as CMakePresets.json says.
build() {
    local dir=build/$1
    cmake --preset "$@" >"$dir.log" 2>&1 || { cat "$dir.log"; return 1; }
    cmake --build "$dir" -j "$jobs" >>"$dir.log" 2>&1 || { tail -n 60 "$dir.log"; return 1; }
}

mkdir -p build
