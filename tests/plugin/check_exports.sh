#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# check_exports.sh BINARY MAP: what the binary exports is what the version script lists.
set -euo pipefail
export LC_ALL=C

# One line per symbol; the variants of a constructor and destructor have one name.
exported=$(nm -DC --defined-only "$1" | cut -d' ' -f3- | sort -u)
listed=$(sed -n '/global:/,/local:/p' "$2" | grep -vE 'global:|local:|extern|}' |
    sed 's/^[ "]*//; s/[";]*$//' | sort -u)

if [ "$exported" != "$listed" ]; then
    echo "exported (<) differs from listed (>):"
    diff <(echo "$exported") <(echo "$listed") || true
    exit 1
fi
echo "$(echo "$exported" | wc -l) exports, as listed"
