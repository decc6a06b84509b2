#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# check_list.sh LIST PROGRAM...: the list says of each test program whether it runs on Windows.
set -euo pipefail
list=$1
shift
status=0
for program in "$@"; do
    grep -qE "^(- )?$program( |$)" "$list" || {
        echo "$list does not say whether $program runs on Windows"
        status=1
    }
done
for program in $(sed -nE 's/^(- )?(test_[a-z_0-9]+).*/\2/p' "$list"); do
    [ "$program" = test_windows_files ] || [[ " $* " == *" $program "* ]] || {
        echo "$list names $program, which there is not"
        status=1
    }
done
[ $# -gt 20 ] || status=1
echo "$# test programs"
exit $status
