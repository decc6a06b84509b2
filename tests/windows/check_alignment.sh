#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# check_alignment.sh WORK LIBRARY: no instruction of the library asks for memory aligned to a whole wide
# vector: g++ keeps the stack aligned to 16 bytes only on Windows. Debian's g++ writes no such
# instruction there by itself; others do, so that the search is tried on one first.
set -euo pipefail
. "$(dirname "$0")/wine.sh"
need_product "$1"
library=$1/$2
[ -e "$library" ] || { echo "$library was not built"; exit 1; }

disassembled() {
    x86_64-w64-mingw32-objdump -d --no-show-raw-insn "$1"
}
# Moves between registers and memory, of more than 16 bytes.
aligned_moves() {
    disassembled "$1" | grep -E 'vmov(ap[sd]|dqa(32|64)?|nt[a-z]+) .*%[yz]mm' | grep '(' || true
}

sample=$(mktemp)
trap 'rm -f "$sample"' EXIT
printf 'vmov%s\n' 'aps (%rcx), %ymm1' 'dqa64 %zmm2, 64(%rsp)' 'ntps %ymm3, (%rdx)' \
    'ups (%rcx), %ymm1' 'aps %ymm1, %ymm2' 'aps (%rcx), %xmm1' |
    x86_64-w64-mingw32-as -o "$sample" -
[ "$(aligned_moves "$sample" | wc -l)" = 3 ] ||
    { echo "of six moves three need alignment, found:"; aligned_moves "$sample"; exit 1; }

wide=$(disassembled "$library" | grep -cE '%[yz]mm' || true)
aligned=$(aligned_moves "$library")
echo "$wide instructions on wide vectors"
[ "$wide" -gt 100 ] || { echo "there are hardly any: were the wide kernels left out?"; exit 1; }
[ -z "$aligned" ] || { echo "these need alignment:"; head -n 5 <<<"$aligned"; exit 1; }
