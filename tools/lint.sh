#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs clang-tidy on the sources of the library and the host, or on the given ones.
#
# usage: tools/lint.sh [FILE...]
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
. tools/setup.sh

# Nearly all of the time is spent on third-party headers, so the sources are checked in batches. A unity build would
# include the sources of a batch; here they are copied into it, because the analyzer skips functions of included files.
build=build/lint
unity=ON
[ $# -eq 0 ] || unity=OFF
quietly cmake --preset dev -B "$build" -DOFP_PRECOMPILE=OFF -DOFP_BUILD_TESTS=OFF -DOFP_BUILD_BENCH=OFF \
    -DCMAKE_UNITY_BUILD=$unity || fail "configuring for clang-tidy failed"
files=("$@")
map=$build/lines.map
: >"$map"
if [ $unity = ON ]; then
    mapfile -t files < <(find "$PWD/$build" -path '*/Unity/*.cxx' | sort)
    for file in "${files[@]}"; do
        sources=$(sed -n 's/^#include "\(.*\)"$/\1/p' "$file")
        line=1
        : >"$file"
        while IFS= read -r source; do
            cat "$source" >>"$file"
            printf '%s\t%s\t%s\n' "$file" "$line" "${source#"$PWD"/}" >>"$map"
            line=$((line + $(wc -l <"$source")))
        done <<<"$sources"
    done
fi

# Translates line numbers of a batch to those of its sources.
translate() {
    awk -F '\t' -v map="$map" '
        BEGIN { while ((getline < map) > 0) { n[$1]++; first[$1, n[$1]] = $2; name[$1, n[$1]] = $3 } FS = ":" }
        { split($0, part, ":") }
        part[1] in n {
            for (i = n[part[1]]; i > 1 && first[part[1], i] > part[2]; --i) {}
            sub(/^[^:]*:[0-9]+/, name[part[1], i] ":" part[2] - first[part[1], i] + 1)
        }
        { print }'
}

# On stderr clang-tidy only counts suppressed warnings per file.
printf '%s\0' "${files[@]}" |
    xargs -0 -n 1 -P "$(nproc)" clang-tidy-14 --quiet -p "$build" 2>/dev/null | translate ||
    fail "clang-tidy has the findings listed above"
