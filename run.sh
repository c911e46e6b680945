#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what is missing, builds the release, opens a case with ddphost and writes a page that shows it.
set -euo pipefail

if [ "${1:-}" = "-h" ] || [ "${1:-}" = "--help" ]; then
    cat <<'TXT'
usage: ./run.sh [CASE] [ddphost info options]

Installs missing Debian packages (as root or through sudo; neither is needed if none is missing), builds the release
and shows what CASE holds: a case folder or a path to its case.foam. Without CASE it opens examples/cavity. At the end
stands the path of a page, build/pages/NAME.html, that shows the case in any browser.
TXT
    exit 0
fi

# CASE is relative to the caller's folder; the build runs in the folder of this script.
caller=$PWD
case_path=${1:-}
[ $# -gt 0 ] && shift
if [ -n "$case_path" ]; then
    [ -e "$case_path" ] || { echo "error: there is no '$case_path'" >&2; exit 2; }
    # Links stay: a case.foam may be a link from another folder.
    case_path=$(realpath -s "$case_path")
fi
cd "$(dirname "$(realpath "$0")")"
. tools/setup.sh

# A path that the caller can paste into a shell.
for_caller() { printf '%q' "$(realpath -s --relative-to="$caller" --relative-base="$caller" "$1")"; }

install_packages $BUILD_PACKAGES
build_preset release
case_path=${case_path:-$PWD/examples/cavity}
ddphost=$PWD/build/release/host/ddphost
say "Opening $case_path"
code=0
"$ddphost" info --counts "$case_path" "$@" || code=$?
[ $code -ne 2 ] || exit $code # a mistake in the options, which ddphost has explained

# All states, or the latest one if these are too much for a page.
if [ $code -eq 0 ] || [ $code -eq 1 ]; then
    folder=$case_path
    [ -d "$folder" ] || folder=$(dirname "$folder")
    page=$PWD/build/pages/$(basename "$folder").html
    mkdir -p build/pages
    view_options=(-o "$page")
    [[ " $* " != *" --plain "* ]] || view_options+=(--plain)
    say "Writing a page that shows it in any browser"
    view_code=0
    "$ddphost" view "$case_path" "${view_options[@]}" || view_code=$?
    if [ $view_code -eq 6 ]; then
        say "Writing the latest state only"
        "$ddphost" view "$case_path" "${view_options[@]}" --state latest || true
    fi
fi

say "The program is $(for_caller "$ddphost"). What to try next:"
next() { printf '   %s %s %s   # %s\n' "$(for_caller "$ddphost")" "$1" "$(for_caller "$case_path")" "$2" >&2; }
[ $code -ne 0 ] || next stats "ranges of the results"
next doctor "what of the case does not show, and why"
exit $code
