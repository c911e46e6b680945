#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Measures which lines and branches of the library the suite runs. Builds in build/coverage.
#
# usage: tools/coverage.sh [show]
#
# Prints the total and fails if it is below the limits. With "show" it also prints each source and writes all lines and
# branches with their counts to build/coverage/show.txt.
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
. tools/setup.sh

least_lines=95
least_branches=85
build=$PWD/build/coverage

install_packages $BUILD_PACKAGES $TEST_PACKAGES llvm-14
quietly cmake --preset dev -B "$build" -DOFP_COVERAGE=ON -DOFP_PRECOMPILE=OFF -DOFP_BUILD_BENCH=OFF \
    -DCMAKE_UNITY_BUILD=ON || fail "configuring failed"
quietly cmake --build "$build" || fail "building failed"
rm -rf "$build/profiles"
say "Running the suite"
LLVM_PROFILE_FILE="$build/profiles/%4m.profraw" quietly ctest --test-dir "$build" --parallel "$(nproc)" || fail "tests failed"
llvm-profdata-14 merge -sparse "$build"/profiles/*.profraw -o "$build/suite.profdata"

# The library as linked into tests, and as a host loads it.
objects=()
for program in "$build"/tests/*/*_tests "$build"/tests/fuzz/fuzz_replay; do
    objects+=(-object "$program")
done
about=("$build/src/libOpenFoamPlugin.so" "${objects[@]}" "-instr-profile=$build/suite.profdata")
llvm-cov-14 report "${about[@]}" "$PWD/src" >"$build/report.txt"
rows='^TOTAL'
if [ "${1:-}" = show ]; then
    rows='.'
    llvm-cov-14 show "${about[@]}" -show-branches=count "$PWD/src" >"$build/show.txt"
fi
awk -v rows="$rows" 'NF == 13 && $0 ~ rows && $10 ~ /%/ { printf "%-44s lines %8s  branches %8s\n", $1, $10, $13 }' "$build/report.txt"
awk -v lines=$least_lines -v branches=$least_branches '
    /^TOTAL/ { if ($10 + 0 < lines || $13 + 0 < branches) { exit 1 } }' "$build/report.txt" ||
    fail "the suite runs less than $least_lines % of the lines or $least_branches % of the branches"
