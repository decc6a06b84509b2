#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# compare_exports.sh WORK RECORDINGS TEST_MODULE COMPARE_PICTURES: what the plugin's dialogs exported
# of a real recording on Windows, when test_module ran there, against what they export here.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
. "$here/wine.sh"
work=$1
test_module=$3
compare_pictures=$4
need_product "$work"
if [ ! -d "$2/recordings" ]; then
    echo "skipped: there are no recordings in $2"
    exit 77
fi
name=OfARealRecordingWithItsProtocolAndATrigger
windows=$work/exports/test_module/$name
linux=$work/exports/linux
rm -rf "$linux"
mkdir -p "$linux/home"
HOME=$linux/home QT_QPA_PLATFORM=offscreen QT_HASH_SEED=0 TESSERA_KEEP_EXPORTS=$linux \
    "$test_module" --gtest_brief=1 --gtest_filter="*.$name" >"$linux/log" 2>&1 || {
    cat "$linux/log"
    exit 1
}
"$here/compare_tables.py" "$linux/$name" "$windows"
"$compare_pictures" "$linux/$name" "$windows"
