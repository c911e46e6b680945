#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs the fuzz targets on two cores for MINUTES in total and reports what each one did and found.
#
#   tests/fuzz/run.sh MINUTES [TARGET...]
#
# New inputs and findings are kept in build/asan/fuzz. Exit code 1 means a finding, 2 wrong usage. FUZZ_SEED=N in the
# environment makes runs alike, as those of .ci/run are: a change is judged by its own faults, not by chance.
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/../.."
minutes=${1:-}
if ! [[ $minutes =~ ^[1-9][0-9]*$ ]]; then
    echo "usage: tests/fuzz/run.sh MINUTES [TARGET...]" >&2
    exit 2
fi
shift

. tools/setup.sh
install_packages $BUILD_PACKAGES $TEST_PACKAGES $CHECK_PACKAGES
quietly cmake --preset asan || fail "configuring failed"
quietly cmake --build build/asan --target fuzz_targets || fail "building failed"
program=$PWD/build/asan/tests/fuzz/fuzz_targets
corpus=$PWD/build/asan/tests/fuzz/corpus
work=$PWD/build/asan/fuzz
targets=${*:-$("$program")}

# Each run writes thousands of files; keep them in memory where the system offers a place for that.
files=$(mktemp -d /dev/shm/fuzz-XXXXXX 2>/dev/null || mktemp -d)
trap 'rm -rf "$files"' EXIT

seconds=$((minutes * 60 * 2 / $(wc -w <<<"$targets")))
seconds=$((seconds > 0 ? seconds : 1))

run_target()
{
    local most=4096
    [[ $1 == case ]] && most=8192
    mkdir -p "$work/corpus/$1" "$work/findings"
    # The suite's replay reports leaks when it ends; checking after each input would halve the speed.
    OFP_FUZZ_TARGET=$1 TMPDIR=$files ASAN_OPTIONS=quarantine_size_mb=16 nice -n 10 "$program" -max_len=$most \
        -max_total_time="$seconds" -seed="${FUZZ_SEED:-0}" -dict=tests/fuzz/words.dict -print_final_stats=1 -detect_leaks=0 -timeout=60 -report_slow_units=60 \
        -malloc_limit_mb=1024 -entropic_scale_per_exec_time=1 -artifact_prefix="$work/findings/$1-" \
        "$work/corpus/$1" "$corpus/$1" >"$work/$1.log" 2>&1 || true
}
export -f run_target
export program corpus work files seconds
rm -rf "$work/findings"
xargs -n 1 -P 2 bash -c 'run_target "$0"' <<<"$targets"

printf '%-14s %12s %9s %7s %9s %9s\n' target executions 'per s' edges features findings
found=0
for target in $targets; do
    count=$(find "$work/findings" -name "$target-*" | wc -l)
    found=$((found + count))
    awk -v name="$target" -v found="$count" '
        / cov: / { for (i = 1; i < NF; ++i) { if ($i == "cov:") edges = $(i + 1); if ($i == "ft:") features = $(i + 1) } }
        /stat::number_of_executed_units/ { runs = $2 }
        /stat::average_exec_per_sec/ { speed = $2 }
        END { printf "%-14s %12d %9d %7d %9d %9d\n", name, runs, speed, edges, features, found }' "$work/$target.log"
done
echo "New inputs are in build/asan/fuzz/corpus; tests/fuzz/README.md says how to keep them."
if ((found > 0)); then
    # Whoever sees only this output must be able to repeat the finding: its report and its input.
    for finding in "$work"/findings/*; do
        name=$(basename "$finding")
        printf '\n== %s\n' "$name"
        grep -a -A 40 -m 1 -e FINDING -e ERROR: -e 'runtime error' "$work/${name%%-*}.log" | cut -c 1-400 || true
        printf 'input as base64 (tests/fuzz/README.md says how to repeat it):\n'
        head -c 8192 "$finding" | gzip -9 | base64 -w 120
    done
    echo "Findings are in build/asan/fuzz/findings, and their reports in build/asan/fuzz/TARGET.log."
    exit 1
fi
