# Sourced by the scripts beside it: the way to the root, the packages, and one way to build.

cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
jobs=$(nproc)

say() { printf '\n== %s\n' "$*"; }

# need_packages PURPOSE...: installs what is missing of the packages for these purposes; does nothing when all
# is there. Without the right to install it says what to paste, and fails.
need_packages() {
    local purposes missing=() package root=()
    purposes=$(IFS='|'; echo "$*")
    for package in $(sed -nE "s/^($purposes) //p" scripts/packages.txt | sort -u); do
        dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null | grep -q '^ii' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    [ "$(id -u)" -eq 0 ] || root=(sudo -n)
    if ! "${root[@]}" true 2>/dev/null; then
        say 'packages are missing; this command installs them:'
        echo "su -c 'apt-get update && apt-get install --no-install-recommends ${missing[*]}'"
        return 1
    fi
    say "installing: ${missing[*]}"
    "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q update
    "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q install -y --no-install-recommends "${missing[@]}"
}

# build PRESET [TARGET...]: configures build/PRESET as CMakePresets.json says, and builds the targets or all of it.
build() {
    local dir=build/$1
    cmake --preset "$1" >"$dir.log" 2>&1 || { cat "$dir.log"; return 1; }
    shift
    cmake --build "$dir" -j "$jobs" ${1:+--target "$@"} >>"$dir.log" 2>&1 || { tail -n 60 "$dir.log"; return 1; }
}

mkdir -p build
