#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the Debian packages in build/packages, installing what that needs.
set -euo pipefail

if [ $# -gt 0 ]; then
    cat <<'TXT'
usage: tools/package.sh

Installs missing Debian packages (as root or through sudo; neither is needed if none is missing), builds the release and
makes the packages openfoam-data-provider and openfoam-data-provider-dev of it in build/packages.
TXT
    [ "$1" = "-h" ] || [ "$1" = "--help" ] || exit 2
    exit 0
fi

cd "$(dirname "$(realpath "$0")")/.."
. tools/setup.sh

packages=build/packages
staging=$packages/openfoam-data-provider

# Prints version and date of each release, the newest first.
releases() { sed -nE 's/^## \[([0-9.]+)\] - ([0-9-]+)$/\1 \2/p' CHANGELOG.md; }

# Writes Debian's changelog, which points to the one of the project.
write_changelog() {
    local version date maintainer
    maintainer=$(sed -n 's/^Maintainer: //p' packaging/debian/control)
    releases | while read -r version date; do
        printf 'openfoam-data-provider (%s-1) unstable; urgency=medium\n\n' "$version"
        printf '  * Release %s. What changed is in changelog.gz.\n\n' "$version"
        printf -- ' -- %s  %s\n\n' "$maintainer" "$(LC_ALL=C date --utc --rfc-email --date "$date")"
    done >"$staging/debian/changelog"
}

# Refuses the packages unless this one's field Depends has each of the texts.
expect_depends() {
    local name=$1 depends text
    depends=$(dpkg-deb --field "$packages/${name}_$version-1_$architecture.deb" Depends)
    shift
    for text in "$@"; do
        if [[ $depends != *"$text"* ]]; then
            rm "$packages"/*.deb
            fail "$name must depend on '$text', but depends on: ${depends:-nothing}"
        fi
    done
}

install_packages $BUILD_PACKAGES $PACKAGING_PACKAGES
read -r version date < <(releases) || fail "CHANGELOG.md has no release"
# Nothing in the packages is dated later, so that the same sources make the same packages.
SOURCE_DATE_EPOCH=$(date --utc --date "$date" +%s)
export SOURCE_DATE_EPOCH
build_preset package
grep -qx "CMAKE_PROJECT_VERSION:STATIC=$version" build/package/CMakeCache.txt ||
    fail "the newest release in CHANGELOG.md is $version, but CMakeLists.txt has another version"

# Only the new packages are left there, whatever versions were made before.
rm -rf "$packages"
mkdir -p "$staging"
cp -r packaging/debian CHANGELOG.md examples/minimal_host "$staging"
write_changelog
(cd "$staging" && BUILD=$OLDPWD/build/package quietly dpkg-buildpackage --build=binary --no-sign --no-check-builddeps) ||
    fail "making the packages failed"

architecture=$(dpkg --print-architecture)
# A package without dependencies installs anywhere and may not run.
expect_depends openfoam-data-provider libc6 libstdc++6 libtbb12 zlib1g
expect_depends openfoam-data-provider-dev "openfoam-data-provider (= $version-1)"
for package in "$packages"/*.deb; do
    say "Made $package, which needs $(dpkg-deb --field "$package" Depends)"
done
