#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the Debian package in build/release/package, installing what that needs.
#
# usage: tools/package.sh
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
. tools/setup.sh

install_packages $BUILD_PACKAGES $PACKAGING_PACKAGES
build_preset release
# Only the new package is left there, whatever versions were made before.
rm -rf build/release/package
quietly cpack --config build/release/CPackConfig.cmake || fail "making the package failed"
for package in build/release/package/*.deb; do
    say "Made $package, which needs$(dpkg-deb --showformat='${Depends}' --show "$package" | sed 's/^/ /')"
done
