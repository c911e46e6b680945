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
# What the command line library brings takes half a minute a file with all checks, so the thin sources that include it get
# those that look at statements of their own.
heavy=()
light=()
for file in "${files[@]}"; do
    case $file in
    host/commands/*Command.cpp | host/main.cpp) heavy+=("$file") ;;
    *) light+=("$file") ;;
    esac
done

# clang-tidy counts suppressed warnings on stderr for each file; only its findings are of interest.
lint() {
    local checks=$1
    shift
    [ $# -eq 0 ] || printf '%s\0' "$@" |
        xargs -0 -n 4 -P "$(nproc)" clang-tidy-14 --quiet -p "$build" ${checks:+"--checks=$checks"} 2>/dev/null ||
        fail "clang-tidy found what is listed above"
}
lint "" "${light[@]}"
lint "-*,bugprone-use-after-move,bugprone-dangling-handle,performance-*,readability-identifier-naming" "${heavy[@]}"
