#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""connectome_times.py BUILD [REPETITIONS [run|large]]: what a whole connectome takes, process and all.

Runs Corvane connectome with 36 regressors on 60 x 72 x 60 x 300 samples of 16 bits and 100 nodes, and
on 97 x 115 x 97 x 300 of single precision and 400 nodes (made once, in BUILD/bench/host/run), and
prints medians: wall time, beside that of `igzip -dc` on the same file (Debian package isal), processor
time, and the most anonymous memory. Wanted: wall time at most 1.15 that of igzip and 50 ms; memory
below 60 and 150 MB.
"""
import math
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import time

BUILD = pathlib.Path(sys.argv[1])
REPETITIONS = int(sys.argv[2]) if len(sys.argv) > 2 else 7
ONLY = sys.argv[3] if len(sys.argv) > 3 else None
WORK = BUILD / "bench" / "host" / "run"
CORVANE = str(BUILD / "bin" / "Corvane")
VOLUMES = 300
SIGNALS = ("trans_x", "trans_y", "trans_z", "rot_x", "rot_y", "rot_z", "csf", "white_matter",
           "global_signal")


def make_data():
    WORK.mkdir(parents=True, exist_ok=True)
    subprocess.run(["cmake", "--build", str(BUILD), "--target", "Corvane", "make_run"],
                   check=True, stdout=subprocess.DEVNULL)
    make_run = str(BUILD / "bench" / "host" / "make_run")
    for name, arguments in (("run", ()), ("large", ("large",)), ("atlas400", ("atlases",))):
        wanted = ONLY in (None, name) or name == "atlas400"
        if wanted and not (WORK / f"{name}.nii.gz").exists():
            subprocess.run([make_run, str(WORK), *arguments], check=True)
    columns = {}
    for number, name in enumerate(SIGNALS):
        values = [math.sin(0.1 * t * (number + 1)) + 0.3 * math.cos(0.37 * t * t + number)
                  for t in range(VOLUMES)]
        change = [None] + [b - a for a, b in zip(values, values[1:])]
        columns[name] = values
        columns[name + "_derivative1"] = change
        columns[name + "_power2"] = [v * v for v in values]
        columns[name + "_derivative1_power2"] = [None if v is None else v * v for v in change]
    lines = ["\t".join(columns)]
    lines += ["\t".join("n/a" if column[t] is None else repr(column[t])
                        for column in columns.values()) for t in range(VOLUMES)]
    (WORK / "confounds.tsv").write_text("\n".join(lines) + "\n")


def run_once(command):
    before = os.times()
    began = time.monotonic()
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL)
    anonymous = 0
    while process.poll() is None:
        try:
            status = pathlib.Path(f"/proc/{process.pid}/status").read_text()
        except OSError:
            break
        lines = [line for line in status.splitlines() if line.startswith("RssAnon")]
        if lines:
            anonymous = max(anonymous, int(lines[0].split()[1]))
        time.sleep(0.004)
    if process.wait() != 0:
        sys.exit(f"{command[0]} failed")
    wall = time.monotonic() - began
    after = os.times()
    cpu = (after.children_user + after.children_system
           - before.children_user - before.children_system)
    return wall, cpu, anonymous / 1024


def medians(command, clean=lambda: None):
    runs = []
    for _ in range(REPETITIONS):
        clean()
        runs.append(run_once(command))
    return [statistics.median(values) for values in zip(*runs)][:2] + [max(r[2] for r in runs)]


def main():
    make_data()
    out = WORK / "connectome"
    for run, nodes, most in (("run", 100, 60), ("large", 400, 150)):
        if ONLY not in (None, run):
            continue
        path = str(WORK / f"{run}.nii.gz")
        pathlib.Path(path).read_bytes()  # into the cache
        unpacking = medians(["igzip", "-dc", path])
        ours = medians([CORVANE, "connectome", "--bold", path, "--atlas",
                        str(WORK / f"atlas{nodes}.nii.gz"), "--confounds",
                        str(WORK / "confounds.tsv"), "--clean", "36P", "--out", str(out)],
                       lambda: shutil.rmtree(out, ignore_errors=True))
        print(f"{run}, {nodes} nodes: {ours[0]:.3f} s wall, {ours[1]:.3f} s processor, "
              f"{ours[2]:.1f} MB (wanted {1.15 * unpacking[0] + 0.05:.3f} s, {most} MB); "
              f"igzip {unpacking[0]:.3f} s")
    shutil.rmtree(out)


main()
