#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What Corvane cohort costs beyond the calls of Corvane connectome that it stands for.

study_overhead.py PROGRAM FOLDER [RUNS [SUBJECTS]]

Makes RUNS (200) participants with the same run of about a second in FOLDER, computes them by as many
calls of connectome and by one of cohort, without pages, and prints the CPU seconds of both. Then
SUBJECTS (1000) participants with tiny runs: the time of plan, participant and status, and the most
memory that a process took.
"""
import gzip
import os
import pathlib
import random
import struct
import subprocess
import sys
import time


def nifti(path, dim, values, kind, spacing=3.0, repetition=2.0):
    header = bytearray(352)
    struct.pack_into("<i", header, 0, 348)
    struct.pack_into("<8h", header, 40, len(dim), *dim, *[1] * (7 - len(dim)))
    struct.pack_into("<2h", header, 70, {"h": 4, "f": 16}[kind], {"h": 16, "f": 32}[kind])
    struct.pack_into("<8f", header, 76, 1, *[spacing] * 3, repetition, 0, 0, 0)
    struct.pack_into("<f", header, 108, 352)
    header[123] = 2 | 8
    struct.pack_into("<2h", header, 252, 0, 1)
    for row in range(3):
        struct.pack_into("<4f", header, 280 + 16 * row, *[spacing * (row == c) for c in range(3)], 0)
    header[344:348] = b"n+1\0"
    path.write_bytes(gzip.compress(bytes(header) + values, 1, mtime=0))


def confounds(path, volumes, chance):
    names = ["framewise_displacement"] + [f"{kind}_{axis}" for kind in ("trans", "rot")
                                          for axis in "xyz"]
    lines = ["\t".join(names)]
    for volume in range(volumes):
        lines.append("\t".join("n/a" if volume == 0 and name == names[0]
                               else f"{chance.random() / 10:.6f}" for name in names))
    path.write_text("\n".join(lines) + "\n")


def dataset(folder, participants, size, volumes, nodes):
    """All participants have the same run, each by a link of its own."""
    chance = random.Random(1)
    voxels = size[0] * size[1] * size[2]
    folder.mkdir(parents=True)
    nifti(folder / "atlas-A_dseg.nii.gz", size,
          struct.pack(f"<{voxels}h", *[1 + v * nodes // voxels for v in range(voxels)]), "h")
    volume = struct.pack(f"<{voxels}h", *[900 + int(200 * chance.random()) for _ in range(voxels)])
    data = bytearray()
    for _ in range(volumes):
        cut = 2 * chance.randrange(voxels)
        data += volume[cut:] + volume[:cut]
    run, table = folder / "run.nii.gz", folder / "confounds.tsv"
    nifti(run, (*size, volumes), bytes(data), "h")
    confounds(table, volumes, chance)
    for number in range(1, participants + 1):
        place = folder / f"data/sub-{number:04}/func"
        place.mkdir(parents=True)
        os.link(run, place / f"sub-{number:04}_task-rest_space-T1w_desc-preproc_bold.nii.gz")
        os.link(table, place / f"sub-{number:04}_task-rest_desc-confounds_timeseries.tsv")


def in_process_of_its_own(work, *arguments):
    """Its memory would count as that of the programs that this process starts afterwards."""
    process = os.fork()
    if process == 0:
        work(*arguments)
        os._exit(0)
    if os.waitpid(process, 0)[1] != 0:
        sys.exit("the data could not be made")


def measured(command):
    """Seconds by the clock and of CPU, and the most MB of a process; its own processes included."""
    start = time.monotonic()
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL)
    _, status, used = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit(f"{command} ended with {status}")
    return time.monotonic() - start, used.ru_utime + used.ru_stime, used.ru_maxrss / 1024


def overhead(program, folder, runs):
    in_process_of_its_own(dataset, folder, runs, (60, 72, 60), 600, 200)
    settings = ["--atlas", str(folder / "atlas-A_dseg.nii.gz"), "--clean", "motion6"]
    data = folder / "data"
    single = study = memory = 0
    # In turns, so that what else the machine does weighs on both.
    for first in range(1, runs + 1, 20):
        numbers = range(first, min(first + 20, runs + 1))
        for number in numbers:
            stem = f"sub-{number:04}/func/sub-{number:04}_task-rest"
            single += measured([program, "connectome", "--bold",
                                f"{data}/{stem}_space-T1w_desc-preproc_bold.nii.gz", "--confounds",
                                f"{data}/{stem}_desc-confounds_timeseries.tsv", *settings,
                                "--dataset-root", str(data), "--out",
                                str(folder / f"single/{number}")])[1]
        _, cpu, most = measured([program, "cohort", str(data), str(folder / "out"), "participant",
                                 *settings, "--no-pages", "--nprocs", "1", "--participant-label",
                                 *(f"{number:04}" for number in numbers)])
        study, memory = study + cpu, max(memory, most)
    print(f"{runs} runs: connectome {single:.1f} s of CPU, cohort {study:.1f} s "
          f"({100 * (study / single - 1):+.1f} %), {memory:.0f} MB")


def report(subjects, step, figures):
    elapsed, cpu, memory = figures
    print(f"{subjects} subjects, {step}: {elapsed:.2f} s, {cpu:.2f} s of CPU, {memory:.0f} MB")


def many(program, folder, subjects):
    in_process_of_its_own(dataset, folder, subjects, (4, 3, 1), 130, 4)
    settings = ["--atlas", str(folder / "atlas-A_dseg.nii.gz"), "--clean", "motion6", "--no-pages"]
    data, out = str(folder / "data"), str(folder / "out")
    for step in (["plan", *settings], ["participant", *settings], ["plan", *settings]):
        report(subjects, step[0], measured([program, "cohort", data, out, *step]))
    report(subjects, "status", measured([program, "cohort", out, "status"]))


def main():
    program, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    runs, subjects = (int(word) for word in (sys.argv[3:] + ["200", "1000"][len(sys.argv) - 3:]))
    many(program, folder / "many", subjects)
    overhead(program, folder / "large", runs)


main()
