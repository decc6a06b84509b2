# SPDX-License-Identifier: GPL-3.0-or-later
"""The table of tests/soak/coverage, from what gcovr tells: coverage_table.py REPORT [--branches]."""

import collections
import json
import sys

WITHOUT_WINDOWS = ("plugin", "dataset", "engine", "results", "nodalis", "signals", "statistics")


def folder_of(path):
    parts = path.split("/")
    return "/".join(parts[:2]) if parts[0] == "host" else parts[0]


def main():
    with open(sys.argv[1], encoding="utf-8") as report:
        files = json.load(report)["files"]
    lines = collections.defaultdict(lambda: [0, 0])
    branches = collections.defaultdict(lambda: [0, 0])
    untaken = []
    for file in files:
        path = file["file"]
        folder = folder_of(path)
        for line in file["lines"]:
            if line.get("gcovr/noncode"):
                continue
            lines[folder][0] += line["count"] > 0
            lines[folder][1] += 1
            of_line = [branch for branch in line["branches"] if not branch.get("throw")]
            taken = sum(branch["count"] > 0 for branch in of_line)
            branches[folder][0] += taken
            branches[folder][1] += len(of_line)
            if folder in WITHOUT_WINDOWS and (taken < len(of_line) or line["count"] == 0):
                what = f"{taken} of {len(of_line)}" if line["count"] else "never"
                untaken.append((path, line["line_number"], what))
    print("| Folder | Lines | Covered | Branches | Covered |\n|---|---|---|---|---|")
    for folder in sorted(lines):
        (line_hits, line_count), (hits, count) = lines[folder], branches[folder]
        share = f"{100 * hits / count:.1f} %" if count else "-"
        print(f"| `{folder}/` | {line_count} | {100 * line_hits / line_count:.1f} % | {count} | {share} |")
    if "--branches" in sys.argv:
        for path, number, what in sorted(untaken):
            print(f"{path}:{number}: {what}")


main()
