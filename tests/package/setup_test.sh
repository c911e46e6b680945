#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# What the scripts say and do about missing packages, with stand-ins for the tools that would change the machine.
#
# usage: setup_test.sh SOURCE_DIR
set -euo pipefail

. "$1/tools/setup.sh"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Packages called absent-* are missing; `both` is installed for two architectures.
write_tool() { cat >"$work/$1" && chmod +x "$work/$1"; }
write_tool dpkg-query <<'TXT'
#!/bin/bash
case ${!#} in
absent-*) exit 1 ;;
both) printf 'installed\ninstalled\n' ;;
*) printf 'installed\n' ;;
esac
TXT
write_tool apt-get <<TXT
#!/bin/bash
echo "apt-get \$*" >>"$work/calls"
TXT
for tool in bash cat env grep mktemp rm; do
    ln -s "$(command -v $tool)" "$work/$tool"
done

# Installs as a user of this id who finds only these tools; sets `code`, `messages` and `calls`.
install_as() {
    local user=$1
    shift
    : >"$work/calls"
    code=0
    (
        id() { echo "$user"; }
        PATH=$work
        install_packages "$@"
    ) >"$work/messages" 2>&1 || code=$?
    messages=$(<"$work/messages")
    calls=$(<"$work/calls")
}

expect() {
    [ "$2" = "$3" ] || fail "$1: expected
$3
but got
$2"
}

absent="absent-one absent-two"
by_hand="as root, run: apt-get update && apt-get install --no-install-recommends $absent"

install_as 1000 present both
expect "nothing is missing" "$code|$messages|$calls" "0||"

install_as 1000 absent-one present absent-two
expect "neither root nor sudo" "$code|$messages|$calls" \
    "1|error: packages are missing, and you are not root and have no sudo; $by_hand|"

install_as 0 absent-one present absent-two
expect "root" "$code|$messages|$calls" "0|== Installing $absent|apt-get update
apt-get install -y --no-install-recommends $absent"

write_tool sudo <<TXT
#!/bin/bash
echo "sudo \$*" >>"$work/calls"
echo "a password is required"
exit 1
TXT
install_as 1000 absent-one present absent-two
expect "refused by sudo" "$code|$messages|$calls" "1|== Installing $absent
a password is required
error: apt-get update failed; $by_hand|sudo apt-get update"
