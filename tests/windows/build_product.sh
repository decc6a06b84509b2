#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# build_product.sh WORK RECORDINGS: cross-builds everything for Windows with its tests, lays it out and
# packs it, with the libraries in the folder ../windows beside the one of the recordings.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
. "$here/wine.sh"
work=$1
recordings=$2
need_tools

libraries=$recordings/../windows
mkdir -p "$work"
rm -f "$work/product" # says that all is there
for name in qt5-win64 import-win64; do
    archive=$libraries/$name.tar.xz
    if [ ! -e "$archive" ]; then
        echo "skipped: there is no $archive with libraries for Windows"
        exit 77
    fi
    [ "$work/$name" -nt "$archive" ] && continue
    rm -rf "${work:?}/$name"
    tar xf "$archive" -C "$work"
    touch "$work/$name"
done
"$here/../../packaging/windows/build" --qt "$work/qt5-win64" --import "$work/import-win64" \
    --build "$work/build" --out "$work" --tests --recordings "$recordings" --zip --installer
use_prefix "$work/wine" # one for all tests, made before they run side by side
touch "$work/product"
