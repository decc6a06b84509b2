#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
#
# import_times.sh BUILD [REPETITIONS]: what a whole import takes, process and all.
#
# Imports a run of 60 x 72 x 60 x 300 samples of 16 bits (made once, in BUILD/bench/host/run) and
# prints the least of some repetitions: wall time, processor time and the most memory, beside the time
# of `gzip -dc` on the same file and the time to write the output once. The wanted relations:
# import at most 0.8 x gzip + writing, memory at most 1.2 x the .vtc.
set -eu

build=$1
repetitions=${2:-5}
work=$build/bench/host/run
mkdir -p "$work"
cmake --build "$build" --target Corvane make_run >"$work/build.log" || {
    cat "$work/build.log" >&2
    exit 1
}
[ -f "$work/anatomy.nii.gz" ] || "$build/bench/host/make_run" "$work"

# least LABEL PREPARATION COMMAND...: the least wall, processor time and memory of the command.
least() {
    label=$1 preparation=$2
    shift 2
    rm -f "$work/times"
    i=0
    while [ "$i" -lt "$repetitions" ]; do
        eval "$preparation"
        /usr/bin/time -a -o "$work/times" -f "%e %U %S %M" "$@" >/dev/null
        i=$((i + 1))
    done
    awk -v label="$label" '
        { cpu = $2 + $3
          if (NR == 1 || $1 < wall) wall = $1
          if (NR == 1 || cpu < least) least = cpu
          if ($4 > memory) memory = $4 }
        END { printf "%-28s %6.2f s wall %6.2f s processor %8.1f MB\n",
                     label, wall, least, memory / 1024 }' "$work/times"
}

out=$work/out
least "gzip -dc" : gzip -dc "$work/run.nii.gz"
least "import" 'rm -rf "$out"' "$build/bin/Corvane" import --anatomy "$work/anatomy.nii.gz" \
    --functional "$work/run.nii.gz" --name run --out "$out"
least "writing the .vtc once" 'rm -f "$work/copy"' \
    dd if="$out/run.vtc" of="$work/copy" bs=1M conv=fsync status=none
echo "run.nii.gz $(stat -c %s "$work/run.nii.gz") bytes, run.vtc $(stat -c %s "$out/run.vtc") bytes"
rm -rf "$out" "$work/copy" "$work/times"
