#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Packs the inputs of one fuzz target; equal inputs always give the same bytes.
#
#   tests/fuzz/pack.sh TARGET FOLDER
set -euo pipefail

if (($# != 2)) || [[ ! -d $2 ]]; then
    echo "usage: tests/fuzz/pack.sh TARGET FOLDER" >&2
    exit 2
fi
archive=$(dirname "$(realpath "$0")")/corpus/$1.tar.gz
cd "$2"
find . -maxdepth 1 -type f -printf '%P\0' | LC_ALL=C sort -z |
    tar --create --format=ustar --null --files-from=- --mtime=@0 --owner=0 --group=0 --numeric-owner --mode=u=rw,go=r |
    gzip -9n >"$archive.new"
mv "$archive.new" "$archive"
echo "$(find . -maxdepth 1 -type f | wc -l) inputs are now in corpus/$1.tar.gz"
