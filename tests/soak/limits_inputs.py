#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Inputs of tests/soak/limits: runs, atlases, events and studies that are as large as they get.

limits_inputs.py run FILE NX NY NZ VOLUMES [SLICES]   noise; only in that many slices, 0 elsewhere
limits_inputs.py atlas FILE NX NY NZ LABELS [SLICES]  as many labels, of about equal size
limits_inputs.py events FILE INTERVALS SECONDS        one after the other, of two conditions
limits_inputs.py study FOLDER RUN ATLAS SUBJECTS      a pipeline's folder: links to one run
"""
import os
import random
import struct
import sys


def header(size, volumes):
    """Of a NIfTI-1 file with 16-bit samples, voxels of 3 mm and volumes 2 s apart."""
    dims = [4 if volumes else 3, *size, volumes or 1, 1, 1, 1]
    head = struct.pack("<i10x18sih2B8h", 348, b"", 0, 0, ord("r"), 0, *dims)[:56]
    head += struct.pack("<3f4h", 0, 0, 0, 0, 4, 16, 0)
    head += struct.pack("<8f", 1, 3, 3, 3, 2, 0, 0, 0)
    head += struct.pack("<3fh2B4f2i", 352, 1, 0, 0, 0, 2 | 8, 0, 0, 0, 0, 0, 0)
    head += bytes(80 + 24) + struct.pack("<2h", 0, 1)
    head += struct.pack("<6f", 0, 0, 0, 0, 0, 0)
    middle = [-1.5 * (n - 1) for n in size]
    for axis in range(3):
        row = [0.0, 0.0, 0.0, middle[axis]]
        row[axis] = 3.0
        head += struct.pack("<4f", *row)
    head += bytes(16) + b"n+1\0" + bytes(4)
    assert len(head) == 352, len(head)
    return head


def write_run(path, nx, ny, nz, volumes, slices=None):
    """Noise in the middle slices. Holes of the file take no room on the disk."""
    slices = slices or nz
    noise = random.Random(1)
    plane = nx * ny * 2
    with open(path, "wb") as file:
        file.write(header((nx, ny, nz), volumes))
        for volume in range(volumes):
            file.seek(352 + (volume * nz + (nz - slices) // 2) * plane)
            file.write(noise.randbytes(slices * plane))
        file.truncate(352 + volumes * nz * plane)


def write_atlas(path, nx, ny, nz, labels, slices=None):
    slices = slices or nz
    voxels = nx * ny * slices
    first = (nz - slices) // 2 * nx * ny
    values = [0] * (nx * ny * nz)
    for voxel in range(voxels):
        values[first + voxel] = 1 + voxel * labels // voxels
    with open(path, "wb") as file:
        file.write(header((nx, ny, nz), 0))
        file.write(struct.pack(f"<{len(values)}h", *values))


def write_events(path, intervals, seconds):
    with open(path, "w") as file:
        file.write("onset\tduration\ttrial_type\n")
        for n in range(intervals):
            file.write(f"{n * seconds}\t{seconds}\t{'ab'[n % 2]}\n")


def link(source, path):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    os.link(source, path)


def write_study(folder, run, atlas, subjects):
    space = "space-MNI152NLin2009cAsym"
    os.makedirs(folder)
    with open(f"{folder}/dataset_description.json", "w") as file:
        file.write('{"Name": "limits", "BIDSVersion": "1.8.0", "DatasetType": "derivative"}')
    side, table = f"{folder}/run.json", f"{folder}/confounds.tsv"
    with open(side, "w") as file:
        file.write('{"RepetitionTime": 2.0}')
    with open(table, "w") as file:
        volumes = struct.unpack("<h", open(run, "rb").read(50)[48:50])[0]
        noise = random.Random(2)
        file.write("framewise_displacement\tcsf\n")
        for volume in range(volumes):
            file.write(f"{noise.random() / 5:.4f}\t{noise.gauss(0, 1):.4f}\n")
    for n in range(1, subjects + 1):
        stem = f"{folder}/sub-{n:05d}/func/sub-{n:05d}_task-rest"
        link(run, f"{stem}_{space}_desc-preproc_bold.nii")
        link(side, f"{stem}_{space}_desc-preproc_bold.json")
        link(table, f"{stem}_desc-confounds_timeseries.tsv")
    link(atlas, f"{folder}/atlas/tpl-MNI152NLin2009cAsym_atlas-Limits_dseg.nii")


if __name__ == "__main__":
    kind, path, *rest = sys.argv[1:]
    if kind == "study":
        write_study(path, rest[0], rest[1], int(rest[2]))
    else:
        writers = {"run": write_run, "atlas": write_atlas, "events": write_events}
        writers[kind](path, *map(int, rest))
