# SPDX-License-Identifier: GPL-3.0-or-later
"""Small images, tables and studies for the scripts of this folder, and what is in a folder."""

import gzip
import math
import os
import struct

VOLUMES = 130


def jitter(a, b):
    """A number that looks random, the same everywhere, from -0.5 to 0.5."""
    mixed = ((a * 7919 + b * 104729 + 12345) * 2654435761) & 0xFFFFFFFF
    return (mixed >> 8 & 0xFFFF) / 65536 - 0.5


def put(path, data):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as file:
        file.write(data if isinstance(data, bytes) else data.encode())


def put_image(path, size, values, spacing=3.0, time=2.0):
    """A packed NIfTI file of single precision, or of short integers when all values are such."""
    whole = all(isinstance(value, int) for value in values)
    dim = [len(size)] + list(size) + [1] * (7 - len(size))
    pixdim = [1.0, spacing, spacing, spacing, time, 0.0, 0.0, 0.0]
    header = struct.pack("<i", 348) + bytes(35) + b"\0"
    header += struct.pack("<8h", *dim) + bytes(14)
    header += struct.pack("<hhh", 4 if whole else 16, 16 if whole else 32, 0)
    header += struct.pack("<8f", *pixdim)
    header += struct.pack("<3f", 352.0, 1.0, 0.0)
    header += bytes(3) + bytes([2 | 8])  # mm and s
    header = header.ljust(252, b"\0") + struct.pack("<2h", 1, 1)
    header += bytes(24)
    for row in range(3):
        header += struct.pack("<4f", *[spacing if column == row else 0.0 for column in range(4)])
    header = header.ljust(344, b"\0") + b"n+1\0" + bytes(4)
    samples = struct.pack("<%d%s" % (len(values), "h" if whole else "f"), *values)
    put(path, gzip.compress(header + samples, 1, mtime=0))


def sample(voxel, volume, seed):
    region = voxel % 4
    return (1000 + 100 * jitter(volume, seed + (region if region > 1 else 0)) +
            30 * jitter(volume, 50 + voxel) + 200 * trouble(volume, seed))


def trouble(volume, seed):
    return jitter(volume, 99 + seed) + 0.4 * math.sin(0.7 * volume)


def put_run(path, seed, size=(8, 6, 4)):
    voxels = size[0] * size[1] * size[2]
    put_image(path, list(size) + [VOLUMES],
              [sample(voxel, volume, seed) for volume in range(VOLUMES) for voxel in range(voxels)])


def put_confounds(path, seed):
    rows = ["framewise_displacement\ttrouble"]
    rows += ["%s\t%r" % ("n/a" if volume == 0 else "0.1", trouble(volume, seed))
             for volume in range(VOLUMES)]
    put(path, "\n".join(rows) + "\n")


def put_atlas(folder, size=(8, 6, 4)):
    """An atlas of four labels with a table of their names: both paths."""
    image = os.path.join(folder, "tpl_atlas-Four_dseg.nii.gz")
    table = os.path.join(folder, "tpl_atlas-Four_dseg.tsv")
    put_image(image, list(size), [1 + voxel % 4 for voxel in range(size[0] * size[1] * size[2])])
    put(table, "index\tname\n1\tleft\n2\tright\n3\tfront\n4\tback\n")
    return image, table


def put_anatomy(path):
    put_image(path, [24, 18, 12],
              [int(100 + 80 * jitter(voxel, 7)) for voxel in range(24 * 18 * 12)], spacing=1.0)


def put_events(path):
    rows = ["onset\tduration\ttrial_type"]
    rows += ["%d\t40\t%s" % (60 * n, "rest" if n % 2 else "task") for n in range(4)]
    put(path, "\n".join(rows) + "\n")


def run_path(dataset, participant, rest):
    return "%s/sub-%s/func/sub-%s_task-rest_%s" % (dataset, participant, participant, rest)


def put_participant(dataset, participant, seed):
    put_run(run_path(dataset, participant, "space-T1w_desc-preproc_bold.nii.gz"), seed)
    put_confounds(run_path(dataset, participant, "desc-confounds_timeseries.tsv"), seed)


def put_study(dataset, participants):
    """A derivatives folder with participants 01, 02, ... of one run each."""
    put(dataset + "/dataset_description.json",
        '{"Name": "Small", "BIDSVersion": "1.8.0", "DatasetType": "derivative",'
        ' "GeneratedBy": [{"Name": "pipeline", "Version": "23.1"}]}')
    for number in range(1, participants + 1):
        put_participant(dataset, "%02d" % number, number)


def files_below(folder):
    """All files that are not hidden, with their bytes."""
    files = {}
    for place, folders, names in os.walk(folder):
        folders[:] = [name for name in folders if not name.startswith(".")]
        for name in names:
            if not name.startswith("."):
                path = os.path.join(place, name)
                with open(path, "rb") as file:
                    files[os.path.relpath(path, folder)] = file.read()
    return files


def left_below(folder):
    """Hidden files and folders of work that is not finished."""
    left = []
    for place, folders, names in os.walk(folder):
        for name in folders + names:
            kept = name in (".corvane-plan.json", ".corvane-outputs.json") or \
                name.startswith(".corvane-row-") and name.endswith(".json")
            if name.startswith(".") and not kept:
                left.append(os.path.relpath(os.path.join(place, name), folder))
    return left
