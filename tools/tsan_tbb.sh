#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds TBB with the thread sanitizer from Debian's source package, once, into build/tsan-tbb.
#
# Debian's TBB does not tell the sanitizer how it passes work between threads, which shows up as hundreds of false
# races; suppressing those would hide real ones.
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
. tools/setup.sh

prefix=$PWD/build/tsan-tbb
[ ! -e "$prefix/lib/cmake/TBB/TBBConfig.cmake" ] || exit 0

install_packages clang-14 cmake ninja-build libstdc++-12-dev libclang-rt-14-dev xz-utils
say "Building TBB with the thread sanitizer"
# Not inside this folder: TBB does not build if the path contains a blank.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/sources" "$work/lists/partial"

# The machine's package sources with source packages enabled, without changing the machine's settings.
for file in /etc/apt/sources.list.d/*.sources; do
    [ ! -e "$file" ] || sed 's/^Types:.*/Types: deb-src/' "$file" >"$work/sources/$(basename "$file")"
done
cat /etc/apt/sources.list /etc/apt/sources.list.d/*.list 2>/dev/null |
    sed -n 's/^deb /deb-src /p' >"$work/sources/lines.list" || true
apt_source() {
    apt-get -o Dir::Etc::sourcelist=/dev/null -o Dir::Etc::sourceparts="$work/sources" \
        -o Dir::State::lists="$work/lists" -o APT::Sandbox::User=root "$@"
}
# Third-party sources may have no source packages; only TBB's is needed.
quietly apt_source update || true
(cd "$work" && quietly apt_source source --download-only onetbb) || fail "could not download the source package of TBB"
mkdir "$work/source"
tar -xf "$work"/onetbb_*.orig.tar.* -C "$work/source" --strip-components=1

quietly cmake -G Ninja -S "$work/source" -B "$work/build" -DCMAKE_C_COMPILER=clang-14 -DCMAKE_CXX_COMPILER=clang++-14 \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTBB_SANITIZE=thread -DTBB_TEST=OFF -DTBBMALLOC_BUILD=OFF -DTBB_STRICT=OFF \
    -DCMAKE_INSTALL_PREFIX="$prefix" -DCMAKE_INSTALL_LIBDIR=lib || fail "configuring TBB failed"
quietly cmake --build "$work/build" --target install || fail "building TBB failed"
