# SPDX-License-Identifier: GPL-3.0-or-later
"""The table of tests/soak/coverage, from what gcovr tells: coverage_table.py REPORT [--branches].

With --branches each line of the folders without windows that was not reached, or of which a branch was
not taken, must be explained in explained/FOLDER.txt, by its text, below the reason. Ends with 1 if one
is not, or if one is explained that is not there any more.
"""

import collections
import json
import pathlib
import sys

WITHOUT_WINDOWS = ("plugin", "dataset", "engine", "results", "nodalis", "signals", "statistics")


def folder_of(path):
    parts = path.split("/")
    return "/".join(parts[:2]) if parts[0] == "host" else parts[0]


def explained():
    """The lines that are explained, as (path, text of the line)."""
    lines = set()
    for file in sorted((pathlib.Path(__file__).parent / "explained").glob("*.txt")):
        for line in file.read_text(encoding="utf-8").splitlines():
            if line and not line.startswith("#"):
                path, _, text = line.partition(": ")
                lines.add((path, text.strip()))
    return lines


def text_of(path, number):
    return pathlib.Path(path).read_text(encoding="utf-8").splitlines()[number - 1].strip()


def tell_unexplained(untaken):
    """Prints what is not explained, and says whether that was nothing."""
    reasons = explained()
    missing = [line for line in untaken if (line[0], text_of(*line[:2])) not in reasons]
    for path, number, what in sorted(missing):
        print(f"{path}:{number}: {what}: {text_of(path, number)}")
    gone = [
        (path, text)
        for path, text in sorted(reasons)
        if not pathlib.Path(path).exists()
        or text not in map(str.strip, pathlib.Path(path).read_text(encoding="utf-8").splitlines())
    ]
    for path, text in gone:
        print(f"{path}: explained, but not there any more: {text}")
    print(f"{len(untaken)} lines were not reached or not in each branch, {len(missing)} are not explained.")
    return not missing and not gone


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
        sys.exit(not tell_unexplained(untaken))


main()
