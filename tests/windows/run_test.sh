#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# run_test.sh WORK NAME [FILTER]: runs a cross-built test program in the laid-out folder's company.
set -euo pipefail
. "$(dirname "$0")/wine.sh"
work=$1
name=$2
need_product "$work"
use_prefix "$work/wine"

# The folder's libraries, plugins of Qt and fonts, as they ship; of Qt's own what only tests need.
folder=$(echo "$work"/corvane-tessera-*/bin)
export WINEPATH="Z:$folder;Z:$work/qt5-win64/bin"
# A folder that takes no file, not even of root.
export TESSERA_READ_ONLY_FOLDER="Z:/proc/sys"
# What is compared with this system (compare_exports.sh).
export TESSERA_KEEP_EXPORTS="Z:$work/exports/$name"
rm -rf "$work/exports/$name"

status=0
log=$work/$name${NODALIS_KERNELS:+.$NODALIS_KERNELS}.log
cd "$work"
under_wine "$log" "$(cat "$work/build/windows_tests/$name")" \
    --gtest_brief=1 ${3:+"--gtest_filter=$3"} || status=$?
cat "$log"
exit $status
