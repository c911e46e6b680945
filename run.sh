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

# Of the options of info, those that view has too, but for --json: stdout belongs to info.
view_options=()
takes_word=false
for word in "$@"; do
    if $takes_word; then
        takes_word=false
    else
        case $word in
            --plugin | --set | --threads | --color) takes_word=true ;;
            --plugin=* | --set=* | --threads=* | --color=* | --plain | --no-progress | --quiet | --verbose | -[qv]*) ;;
            *) continue ;;
        esac
    fi
    view_options+=("$word")
done

# Writes the page with all states, or with the latest one if these take too much room. Where the folder can be written,
# lack of room is all that makes view end with 6.
write_page() {
    local folder=$case_path status=0
    [ -d "$folder" ] || folder=$(dirname "$folder")
    if ! mkdir -p build/pages || [ ! -w build/pages ]; then
        say "The folder build/pages cannot be written"
        return 1
    fi
    view_options+=(-o "$PWD/build/pages/$(basename "$folder").html")
    "$ddphost" view "$case_path" "${view_options[@]}" || status=$?
    if [ $status -eq 6 ]; then
        say "Writing the latest state only"
        status=0
        "$ddphost" view "$case_path" "${view_options[@]}" --state latest || status=$?
    fi
    [ $status -le 1 ] # 1 tells of what could not be read; the page is there
}

if [ $code -eq 0 ] || [ $code -eq 1 ]; then
    say "Writing a page that shows it in any browser"
    write_page || say "No page was written, for the reason above"
fi

say "The program is $(for_caller "$ddphost"). What to try next:"
next() { printf '   %s %s %s   # %s\n' "$(for_caller "$ddphost")" "$1" "$(for_caller "$case_path")" "$2" >&2; }
[ $code -ne 0 ] || next stats "ranges of the results"
next doctor "what of the case does not show, and why"
exit $code
