#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what is missing, builds the tests and runs the whole suite.
set -euo pipefail

if [ "${1:-}" = "-h" ] || [ "${1:-}" = "--help" ]; then
    cat <<'TXT'
usage: ./test.sh [ctest options]

Installs missing Debian packages (as root or through sudo; neither is needed if none is missing), builds library, host,
tests and benchmarks, and runs the suite. Options go to ctest: ./test.sh -R Hexahedra runs the tests whose name matches.
TXT
    exit 0
fi

cd "$(dirname "$(realpath "$0")")"
. tools/setup.sh

install_packages $BUILD_PACKAGES $TEST_PACKAGES
build_preset dev
say "Running the tests"
ctest --preset dev --parallel "$(nproc)" "$@"
