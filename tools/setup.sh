# SPDX-License-Identifier: MIT
# Shared by the scripts: messages, the Debian packages that a step needs, and building a preset.

say() { printf '== %s\n' "$*"; }
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

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null 2>&1; then
        sudo "$@"
    else
        fail "packages are missing, and this is neither root nor is sudo installed: install$MISSING_PACKAGES"
    fi
}

# Installs those of the given Debian packages that are missing; prints nothing if there are none.
install_packages() {
    local package
    MISSING_PACKAGES=""
    for package in "$@"; do
        if [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
            MISSING_PACKAGES="$MISSING_PACKAGES $package"
        fi
    done
    [ -n "$MISSING_PACKAGES" ] || return 0
    command -v apt-get >/dev/null 2>&1 || fail "this script installs Debian packages; install by hand:$MISSING_PACKAGES"
    say "Installing$MISSING_PACKAGES"
    quietly as_root apt-get update || fail "apt-get update failed"
    # shellcheck disable=SC2086
    quietly as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $MISSING_PACKAGES ||
        fail "could not install$MISSING_PACKAGES"
}

BUILD_PACKAGES="clang-14 cmake ninja-build libstdc++-12-dev libtbb-dev zlib1g-dev libcli11-dev nlohmann-json3-dev libfmt-dev"
TEST_PACKAGES="libgtest-dev libbenchmark-dev binutils locales"
CHECK_PACKAGES="g++ clang-format-14 clang-tidy-14 libclang-rt-14-dev"

# Configures a preset once and builds it; more arguments go to the configuration.
build_preset() {
    local preset=$1
    shift
    if [ ! -f "build/$preset/build.ninja" ]; then
        say "Configuring the build '$preset'"
        quietly cmake --preset "$preset" "$@" || fail "configuring '$preset' failed"
    fi
    say "Building '$preset'"
    # On a terminal, show ninja's progress; otherwise only a failure.
    if [ -t 1 ]; then
        cmake --build --preset "$preset" || fail "building '$preset' failed"
    else
        quietly cmake --build --preset "$preset" || fail "building '$preset' failed"
    fi
}
