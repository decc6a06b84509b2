#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""compare_tables.py EXPECTED FOUND: the CSV and TSV files below two folders have the same names, texts
and, to one part in a million, the same numbers. Says which are the same byte for byte, and how far
the others are from it."""
import math
import pathlib
import sys

TOLERANCE = 1e-6
NOTHING = 1e-9


def tables(folder):
    found = [*folder.rglob("*.csv"), *folder.rglob("*.tsv")]
    return {path.relative_to(folder).as_posix(): path for path in found}


def number(text):
    try:
        return float(text)
    except ValueError:
        return None


def distance(a, b):
    """Relative difference of two fields; infinite when they differ as texts. Where a curve goes through
    zero, only rounding is left to compare: below NOTHING differences count as if of that size."""
    if a == b:
        return 0.0
    x, y = number(a), number(b)
    if x is None or y is None or not (math.isfinite(x) and math.isfinite(y)):
        return math.inf
    return abs(x - y) / max(abs(x), abs(y), NOTHING)


def largest_difference(expected, found):
    mark = "\t" if expected.suffix == ".tsv" else ","
    a = [line.split(mark) for line in expected.read_text(encoding="utf-8").splitlines()]
    b = [line.split(mark) for line in found.read_text(encoding="utf-8").splitlines()]
    if [len(row) for row in a] != [len(row) for row in b]:
        return math.inf
    return max((distance(x, y) for r, s in zip(a, b) for x, y in zip(r, s)), default=0.0)


def main():
    expected, found = (tables(pathlib.Path(folder)) for folder in sys.argv[1:3])
    failed = not expected or expected.keys() != found.keys()
    if failed:
        print("tables:", sorted(expected), "found:", sorted(found))
    same = 0
    for name in sorted(expected.keys() & found.keys()):
        if expected[name].read_bytes() == found[name].read_bytes():
            same += 1
            continue
        difference = largest_difference(expected[name], found[name])
        print(f"{name}: differs by {difference:.2g}")
        failed = failed or not difference <= TOLERANCE
    print(f"{same} of {len(expected)} tables are the same byte for byte")
    sys.exit(failed)


main()
