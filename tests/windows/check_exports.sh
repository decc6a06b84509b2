#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# check_exports.sh WORK BINARY LIST: the table of exported names of a program or library for Windows is
# what the list says, one name a line as c++filt shows it. The variants of a constructor and a
# destructor have one name; of functions of Nodalis the list leaves out what their names say of Eigen.
set -euo pipefail
. "$(dirname "$0")/wine.sh"
need_product "$1"
binary=$1/$2
list=$3
export LC_ALL=C
[ -e "$binary" ] || { echo "$binary was not built"; exit 1; }

# Lines of "[number] name".
exported=$(x86_64-w64-mingw32-objdump -p "$binary" |
    sed -n '/Ordinal.Name Pointer. Table/,/^$/s/^[[:space:]]*\[ *[0-9]*\] //p' | c++filt |
    sed -E 's/^nodalis::eigen_align_[0-9]+_malloc_[01]::([^(]*).*/\1/' | sort -u)
listed=$(sort -u "$list")
if [ -z "$listed" ] || [ "$exported" != "$listed" ]; then
    echo "exported (<) differs from listed (>):"
    diff <(echo "$exported") <(echo "$listed") || true
    exit 1
fi
echo "$(echo "$exported" | wc -l) exports, as listed"
