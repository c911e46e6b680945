#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs clang-tidy over the sources of the library and the host, or over the given ones.
#
# usage: tools/lint.sh [FILE...]
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
. tools/setup.sh

# Nearly all of the time goes into headers of others, so the sources are checked in batches: where the build would
# include those of a batch into one, they are copied instead, because the analyzer looks at no function of a source that
# is included.
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

# Lines of a batch are told as those of their sources.
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

# clang-tidy counts suppressed warnings on stderr for each file; only its findings are of interest.
printf '%s\0' "${files[@]}" |
    xargs -0 -n 1 -P "$(nproc)" clang-tidy-14 --quiet -p "$build" 2>/dev/null | translate ||
    fail "clang-tidy found what is listed above"
