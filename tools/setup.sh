# SPDX-License-Identifier: MIT
# Shared by the scripts: messages, the Debian packages that a step needs, and building a preset.

# Messages go to stderr, so that stdout is what the program at the end writes.
say() { printf '== %s\n' "$*" >&2; }
fail() { printf 'error: %s\n' "$*" >&2; exit 1; }

# Runs a command and shows its output only if it fails.
quietly() {
    local log
    log=$(mktemp)
    if ! "$@" >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
}

# True if the package is installed, for whichever architecture. Not with grep -q, which stops reading at the first match
# and so may break the pipe.
has_package() { dpkg-query -W -f '${db:Status-Status}\n' "$1" 2>/dev/null | grep -x installed >/dev/null; }

# Installs those of the given Debian packages that are missing. Needs root or sudo only if there are any.
install_packages() {
    local package missing=() root=()
    for package in "$@"; do
        has_package "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    command -v apt-get >/dev/null 2>&1 ||
        fail "there is no apt-get to install these packages of Debian 12: ${missing[*]}"
    local by_hand="as root, run: apt-get update && apt-get install --no-install-recommends ${missing[*]}"
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null 2>&1 || fail "packages are missing, and you are not root and have no sudo; $by_hand"
        root=(sudo)
    fi
    say "Installing ${missing[*]}"
    quietly "${root[@]}" apt-get update || fail "apt-get update failed; $by_hand"
    quietly "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}" ||
        fail "could not install all packages; $by_hand"
}

BUILD_PACKAGES="clang-14 cmake ninja-build libstdc++-12-dev libtbb-dev zlib1g-dev libcli11-dev nlohmann-json3-dev libfmt-dev"
TEST_PACKAGES="libgtest-dev libbenchmark-dev binutils locales python3-jsonschema"
PACKAGING_PACKAGES="debhelper dpkg-dev"
PACKAGE_TEST_PACKAGES="lintian mmdebstrap pkgconf"
CHECK_PACKAGES="g++ clang-format-14 clang-tidy-14 libclang-rt-14-dev chromium zsh fish bash-completion man-db groff mandoc python3-numpy python3-vtk9"

# Builds a preset, configured before if it never was, or only for a copy of this tree; more arguments go to the
# configuration.
build_preset() {
    local preset=$1
    shift
    if [ ! -f "build/$preset/build.ninja" ] ||
        ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" "build/$preset/CMakeCache.txt"; then
        say "Configuring the build '$preset'"
        quietly cmake --fresh --preset "$preset" "$@" || fail "configuring '$preset' failed"
    fi
    say "Building '$preset'"
    # On a terminal, show ninja's progress; otherwise only a failure.
    if [ -t 2 ]; then
        cmake --build --preset "$preset" >&2 || fail "building '$preset' failed"
    else
        quietly cmake --build --preset "$preset" || fail "building '$preset' failed"
    fi
}
