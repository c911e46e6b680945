#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what is missing, builds the release and opens a case with ddphost.
set -euo pipefail

if [ "${1:-}" = "-h" ] || [ "${1:-}" = "--help" ]; then
    cat <<'TXT'
usage: ./run.sh [CASE] [ddphost info options]

Installs missing Debian packages (as root or through sudo), builds the release and shows what CASE holds: a case folder
or a path to its case.foam. Without CASE it opens examples/cavity.
TXT
    exit 0
fi

# CASE is relative to the caller's folder; the build runs in the folder of this script.
case_path=${1:-}
[ $# -gt 0 ] && shift
if [ -n "$case_path" ]; then
    [ -e "$case_path" ] || { echo "error: there is no '$case_path'" >&2; exit 2; }
    case_path=$(realpath "$case_path")
fi
cd "$(dirname "$(realpath "$0")")"
. tools/setup.sh

install_packages $BUILD_PACKAGES
build_preset release
case_path=${case_path:-$PWD/examples/cavity}
say "Opening $case_path"
exec build/release/host/ddphost info --counts "$case_path" "$@"
