#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the Debian packages and tests them. After the build, most of the time goes into packing three times, the root
# folder, and the checks, about ten seconds each.
set -euo pipefail

if [ $# -gt 0 ]; then
    cat <<'TXT'
usage: tools/package_test.sh

Makes the Debian packages and tests them: with lintian, then in a bare Debian in a temporary folder, where it installs
them, checks the library, builds a host with the -dev package, and removes them. Needs root or sudo.
TXT
    [ "$1" = "-h" ] || [ "$1" = "--help" ] || exit 2
    exit 0
fi

cd "$(dirname "$(realpath "$0")")/.."
. tools/setup.sh

sudo=()
[ "$(id -u)" -eq 0 ] || sudo=(sudo)
work=$(mktemp -d)
chmod 755 "$work" # apt reads as a user of its own
bare=$work/root
trap '"${sudo[@]}" rm -rf --one-file-system "$work"' EXIT

stage() { say "$* (after $SECONDS s)"; }

# As if nothing were known about the libraries that a program needs.
refuses_packages_without_dependencies() {
    mkdir "$work/bin"
    printf '#!/bin/sh\n' >"$work/bin/dpkg-shlibdeps"
    chmod +x "$work/bin/dpkg-shlibdeps"
    ! PATH="$work/bin:$PATH" tools/package.sh 2>"$work/refusal" &&
        grep -qF "openfoam-data-provider must depend on 'libc6', but depends on: nothing" "$work/refusal" &&
        [ -z "$(find build/packages -name '*.deb')" ]
}

# The machine's own sources of Debian, as lines of a sources.list.
debian_sources() {
    apt-get indextargets --format 'deb $(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' 'Origin: Debian' |
        sort -u
}

# A Debian with nothing but what the package depends on. It gets the machine's proxy too.
make_root() {
    local depends
    depends=$(dpkg-deb --field "$runtime_package" Depends | sed -E 's/ *\([^)]*\)//g; s/ //g')
    apt-config dump | grep -E '^Acquire::(https?|Check-)' >"$work/apt.conf" || true
    [ -n "$(debian_sources)" ] || quietly "${sudo[@]}" apt-get update
    debian_sources | "${sudo[@]}" mmdebstrap --mode=root --variant=essential --include="$depends" \
        --aptopt="$work/apt.conf" "$(. /etc/os-release && echo "$VERSION_CODENAME")" "$bare" -
}

in_root() { "${sudo[@]}" chroot "$bare" "$@"; }

# The checks run as processes of their own, which needs /proc. Where nothing can be mounted, the installed program runs
# outside of the root, with the libraries from there.
check_library() {
    if "${sudo[@]}" unshare --mount true 2>/dev/null; then
        "${sudo[@]}" unshare --mount sh -c 'mount -t proc proc "$0/proc" && exec chroot "$0" ddphost check' "$bare"
    else
        LD_LIBRARY_PATH=$bare/usr/lib/$multiarch:$bare/lib/$multiarch "$bare/usr/bin/ddphost" check
    fi
}

# All files but those that dpkg keeps about packages.
list_files() {
    "${sudo[@]}" find "$bare" -xdev -path "$bare/var/lib/dpkg" -prune -o -path "$bare/var/log/dpkg.log" -o \
        -printf '%P %M %u %g %l\n' | sort
}

install_in_root() {
    "${sudo[@]}" cp "$runtime_package" "$dev_package" "$bare/tmp" &&
        in_root dpkg --install "${runtime_package/#build\/packages//tmp}" "${dev_package/#build\/packages//tmp}" &&
        "${sudo[@]}" rm "$bare/tmp/"*.deb
}

# Nothing of the machine itself may be found in place of what the package installs.
build_with_cmake() {
    cmake -S "$bare/usr/share/doc/openfoam-data-provider-dev/examples/minimal_host" -B "$work/cmake" -G Ninja \
        -DCMAKE_CXX_COMPILER=clang++-14 -DCMAKE_FIND_ROOT_PATH="$bare" -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=ONLY &&
        cmake --build "$work/cmake"
}

in_root_pkg_config() { PKG_CONFIG_LIBDIR=$bare/usr/lib/$multiarch/pkgconfig pkg-config "$@" openfoam-data-provider; }

build_with_pkg_config() {
    local flags
    flags=$(PKG_CONFIG_SYSROOT_DIR=$bare in_root_pkg_config --cflags --libs) &&
        clang++-14 -std=c++17 "$bare/usr/share/doc/openfoam-data-provider-dev/examples/minimal_host/main.cpp" $flags \
            -o "$work/minimal_host"
}

opens_case() {
    local plugin output status=0
    plugin=$(in_root_pkg_config --variable=plugindir)/libOpenFoamPlugin.so
    "${sudo[@]}" install "$1" "$bare/tmp/minimal_host"
    output=$(in_root /tmp/minimal_host "$plugin" /usr/share/doc/openfoam-data-provider/examples/cavity/case.foam) ||
        status=$?
    "${sudo[@]}" rm "$bare/tmp/minimal_host"
    printf '%s\n' "$output"
    [ $status -eq 0 ] && [[ $output == *"part 1: default_region"*movingWall*"result 1: Velocity"* ]]
}

install_packages $BUILD_PACKAGES $PACKAGING_PACKAGES $PACKAGE_TEST_PACKAGES
multiarch=$(dpkg-architecture -qDEB_HOST_MULTIARCH)

stage "Making the packages"
quietly tools/package.sh || fail "making the packages failed"
sha256sum build/packages/*.deb >"$work/sums"
refuses_packages_without_dependencies ||
    fail "packages without dependencies were not refused as such: $(cat "$work/refusal")"
quietly tools/package.sh || fail "making the packages again failed"
quietly sha256sum --check "$work/sums" || fail "the same sources made other packages"
runtime_package=$(echo build/packages/openfoam-data-provider_*.deb)
dev_package=$(echo build/packages/openfoam-data-provider-dev_*.deb)

stage "Checking the packages with lintian"
quietly lintian --allow-root --fail-on error,warning build/packages/*.changes || fail "lintian found the faults above"

stage "Making a bare root folder"
quietly make_root || fail "making the root folder failed"
list_files >"$work/before"

stage "Installing the packages there"
quietly install_in_root || fail "the packages could not be installed"
in_root ddphost --plugin "/usr/lib/$multiarch/openfoam-data-provider/libOpenFoamPlugin.so" --version >&2 ||
    fail "the installed ddphost does not start"

stage "Checking the installed library"
quietly check_library || fail "'ddphost check' found the faults above"

stage "Building and running the example host"
quietly build_with_cmake || fail "the example could not be built with CMake"
quietly build_with_pkg_config || fail "the example could not be built with pkg-config"
for program in "$work/cmake/minimal_host" "$work/minimal_host"; do
    quietly opens_case "$program" || fail "the example does not open a case"
done

stage "Removing the packages"
quietly in_root dpkg --purge openfoam-data-provider-dev openfoam-data-provider ||
    fail "the packages could not be removed"
list_files >"$work/after"
diff "$work/before" "$work/after" >&2 || fail "removing the packages did not restore the files above"
stage "The packages are good"
