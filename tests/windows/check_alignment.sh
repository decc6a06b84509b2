#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# check_alignment.sh WORK LIBRARY: no instruction of the library asks for memory aligned to a whole wide
# vector: g++ keeps the stack aligned to 16 bytes only on Windows.
set -euo pipefail
. "$(dirname "$0")/wine.sh"
need_product "$1"
library=$1/$2
[ -e "$library" ] || { echo "$library was not built"; exit 1; }
code=$(x86_64-w64-mingw32-objdump -d --no-show-raw-insn "$library")
wide=$(grep -cE '%[yz]mm' <<<"$code" || true)
# Moves between registers and memory, of more than 16 bytes.
aligned=$(grep -E 'vmov(ap[sd]|dqa(32|64)?|nt[a-z]+) .*%[yz]mm' <<<"$code" | grep '(' || true)
echo "$wide instructions on wide vectors"
[ "$wide" -gt 100 ] || { echo "there are hardly any: were the wide kernels left out?"; exit 1; }
[ -z "$aligned" ] || { echo "these need alignment:"; head -n 5 <<<"$aligned"; exit 1; }
