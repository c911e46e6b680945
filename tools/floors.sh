#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks that includes between the folders of src/ only go down the floors, that host/ includes nothing from src/ except
# the interface, and in host/doctor the grammar of dictionaries, that only src/foamfile uses zlib, and that only
# src/LibCore reads the clock.
#
# usage: tools/floors.sh
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
. tools/setup.sh

# What each folder may include besides itself and the interface.
declare -A below=(
    [interface]=""
    [LibCore]=""
    [DvnCore]="LibCore"
    [foamdict]="LibCore"
    [records]="DvnCore LibCore"
    [foamfile]="foamdict records DvnCore LibCore"
    [mesh]="foamfile records DvnCore LibCore"
    [casemodel]="foamfile records DvnCore LibCore"
    [provider]="casemodel mesh foamfile records DvnCore LibCore"
)

wrong=0
complain() {
    printf '%s\n' "$1" >&2
    wrong=1
}

# Prints "file:line:target" for each include of a file in another folder.
includes() { git grep -nE '^#include "[^"/]+/' -- "$1" | sed -E 's/^([^:]+:[0-9]+):#include "([^"]+)".*/\1:\2/'; }

for folder in $(git ls-files 'src/*/*' | cut -d/ -f2 | sort -u); do
    if [ -z "${below[$folder]+known}" ]; then
        complain "src/$folder: this folder has no floor; add it to tools/floors.sh and docs/architecture.md"
        continue
    fi
    while IFS=: read -r file line target; do
        [ -n "$file" ] || continue
        case " $folder interface ${below[$folder]} " in
        *" ${target%%/*} "*) ;;
        *) complain "$file:$line: $folder must not include $target" ;;
        esac
    done <<<"$(includes "src/$folder" || true)"
done

while IFS=: read -r file line target; do
    [ -n "$file" ] || continue
    case $file:${target%%/*} in
    host/doctor/*:foamdict) continue ;;
    esac
    if [ -d "src/${target%%/*}" ] && [ "${target%%/*}" != interface ]; then
        complain "$file:$line: the host must not include $target"
    fi
done <<<"$(includes host || true)"

outside() { git grep -nE "$1" -- 'src/*.h' 'src/*.cpp' | grep -vE "^$2/" || true; }
found=$(outside '#include <zlib\.h>' src/foamfile)
[ -z "$found" ] || complain "only src/foamfile includes zlib: $found"
found=$(outside '#include <(chrono|ctime|time\.h|sys/time\.h)>' src/LibCore)
[ -z "$found" ] || complain "only src/LibCore reads the clock: $found"

[ $wrong -eq 0 ] || fail "includes must only go down the floors: see docs/architecture.md"
