#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""compute_times.py BUILD [REPETITIONS]: what a whole compute takes, process and all.

Computes 10 and 100 VOIs of 300 voxels from a .vtc of 60 x 72 x 60 x 300 samples of 16 bits, which
import_times.sh has made the source of (run that first), and prints the least processor time and the
most anonymous memory. Wanted: 10 VOIs below 0.15 s and 80 MB, 100 VOIs below 0.4 s.
"""
import json
import os
import pathlib
import shutil
import subprocess
import sys
import time

BUILD = pathlib.Path(sys.argv[1])
REPETITIONS = int(sys.argv[2]) if len(sys.argv) > 2 else 9
WORK = BUILD / "bench" / "host" / "run"
DATA = WORK / "data"
CORVANE = str(BUILD / "bin" / "Corvane")


def make_data():
    if not (DATA / "run.vtc").exists():
        subprocess.run([CORVANE, "import", "--anatomy", str(WORK / "anatomy.nii.gz"),
                        "--functional", str(WORK / "run.nii.gz"), "--name", "run",
                        "--out", str(DATA)], check=True, stdout=subprocess.DEVNULL)


def box_of_run():
    """Start of the box, samples per axis, and the step between them, from the header."""
    header = (DATA / "run.vtc").read_bytes()[:4096].split(b"\n\n")[0].decode()
    fields = dict(line.split(":", 1) for line in header.splitlines() if ":" in line)
    start = [int(value) for value in fields["box start"].lstrip("=").split()]
    sizes = [int(value) for value in fields["sizes"].split()[1:]]
    return start, sizes, int(float(fields["spacings"].split()[1]))


def write_vois(count):
    start, sizes, step = box_of_run()
    vois, voxel = [], 0
    for number in range(count):
        triples = []
        for _ in range(300):
            voxel = (voxel + 7) % (sizes[0] * sizes[1] * sizes[2])
            place = (voxel % sizes[0], voxel // sizes[0] % sizes[1],
                     voxel // (sizes[0] * sizes[1]))
            triples.extend(start[axis] + step * place[axis] for axis in range(3))
        vois.append({"name": f"VOI {number}", "color": [255, 0, 0], "voxels": triples})
    path = DATA / f"{count}.voi"
    path.write_text(json.dumps({"format": "Corvane VOI", "version": 1, "referenceSpace": 0,
                                "resolution": [1, 1, 1], "vois": vois}))
    return path


def run_once(voi):
    out = WORK / "computed"
    shutil.rmtree(out, ignore_errors=True)
    before = os.times()
    began = time.monotonic()
    process = subprocess.Popen([CORVANE, "compute", "--anatomy", str(DATA / "run.vmr"), "--vtc",
                                str(DATA / "run.vtc"), "--voi", str(voi), "--out", str(out)],
                               stdout=subprocess.DEVNULL)
    anonymous = 0
    while process.poll() is None:
        try:
            status = pathlib.Path(f"/proc/{process.pid}/status").read_text()
        except OSError:
            break
        for line in status.splitlines():
            if line.startswith("RssAnon"):
                anonymous = max(anonymous, int(line.split()[1]))
        time.sleep(0.002)
    process.wait()
    wall = time.monotonic() - began
    after = os.times()
    if process.returncode != 0:
        sys.exit("the compute failed")
    shutil.rmtree(out, ignore_errors=True)
    processor = after.children_user + after.children_system - before.children_user - \
        before.children_system
    return wall, processor, anonymous / 1024


def main():
    make_data()
    for count in (10, 100):
        voi = write_vois(count)
        runs = [run_once(voi) for _ in range(REPETITIONS)]
        print(f"compute, {count:3} VOIs: {min(r[0] for r in runs):.3f} s wall, "
              f"{min(r[1] for r in runs):.3f} s processor, "
              f"{max(r[2] for r in runs):.1f} MB anonymous memory")


main()
