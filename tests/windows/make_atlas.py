#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""make_atlas.py MASK ATLAS: cuts the mask of a brain (NIfTI-1, 8 or 16 bits, little endian) into
labelled boxes, and writes the table of their names beside the atlas as ATLAS.tsv."""
import gzip
import struct
import sys

BOXES = 3  # along each axis


def read(path):
    data = open(path, "rb").read()
    return gzip.decompress(data) if data[:2] == b"\x1f\x8b" else data


def main():
    mask = read(sys.argv[1])
    nx, ny, nz = struct.unpack_from("<3h", mask, 42)
    offset = int(struct.unpack_from("<f", mask, 108)[0])
    kind = {2: "B", 4: "h"}[struct.unpack_from("<h", mask, 70)[0]]
    values = struct.unpack_from(f"<{nx * ny * nz}{kind}", mask, offset)
    labels = []
    for n, value in enumerate(values):
        i, j, k = n % nx, n // nx % ny, n // (nx * ny)
        box = i * BOXES // nx + BOXES * (j * BOXES // ny + BOXES * (k * BOXES // nz))
        labels.append(1 + box if value else 0)
    header = bytearray(mask[:352])
    struct.pack_into("<2h", header, 70, 4, 16)
    struct.pack_into("<3f", header, 108, 352.0, 1.0, 0.0)
    with open(sys.argv[2], "wb") as atlas:
        atlas.write(header + struct.pack(f"<{len(labels)}h", *labels))
    with open(sys.argv[2] + ".tsv", "w", encoding="utf-8", newline="\n") as table:
        table.write("index\tname\n")
        for label in sorted(set(labels) - {0}):
            table.write(f"{label}\tGroße Box {label}\n")


main()
