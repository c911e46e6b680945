#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs clang-tidy over the sources of the library and the host, as configured in a build folder.
#
# usage: tools/lint.sh BUILD_FOLDER [FILE...]
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
. tools/setup.sh

build=${1:?usage: tools/lint.sh BUILD_FOLDER [FILE...]}
shift
files=("$@")
[ ${#files[@]} -gt 0 ] || mapfile -t files < <(git ls-files 'src/*.cpp' 'host/*.cpp')
# clang-tidy counts suppressed warnings on stderr for each file; only its findings are of interest.
printf '%s\0' "${files[@]}" | xargs -0 -n 4 -P "$(nproc)" clang-tidy-14 --quiet -p "$build" 2>/dev/null ||
    fail "clang-tidy found what is listed above"
