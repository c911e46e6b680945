#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Draws the picture in README.md: runs a tutorial of OpenFOAM and saves what "ddphost view --png" makes of it.
#
# usage: tools/picture.sh [CASE]
#
# CASE is a run of the tutorial flange; without it one is made in build/picture.
set -euo pipefail

case "${1:-}" in
    -h | --help) sed -n '3,/^$/s/^# \{0,1\}//p' "$0"; exit 0 ;;
    ?*) case_path=$(realpath "$1") ;;
esac
cd "$(dirname "$(realpath "$0")")/.."
. tools/setup.sh

install_packages $BUILD_PACKAGES chromium
build_preset release
if [ -z "${case_path:-}" ]; then
    tools/tutorials.sh --run-only -o build/picture basic/laplacianFoam/flange
    case_path=$PWD/build/picture/cases/basic/laplacianFoam/flange
    # The few steps of a comparison are too short for the heat to spread.
    export WM_PROJECT_DIR=/usr/share/openfoam
    for entry in "endTime 3" "writeInterval 60" "startFrom latestTime"; do
        quietly foamDictionary -entry "${entry% *}" -set "${entry#* }" "$case_path/system/controlDict" ||
            fail "cannot change the end of the run in $case_path"
    done
    say "Running the solver"
    quietly laplacianFoam -case "$case_path" || fail "laplacianFoam failed"
fi
build/release/host/ddphost view "$case_path" --state latest --result "Temperature [node]" --png docs/pictures/flange.png
