#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks that of what ships only files named NAME_posix and NAME_windows know an operating system, by
its headers or its macros, and that each has its other half. Marks of what is exported stand in files
named export.h. Tests and benchmarks may be of one system as a whole, but no file asks which.

check_systems.py ROOT
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1]).resolve()
NOT_SHIPPED = ("tests", "bench")
WITHOUT_SOURCES = ("build", "out", "docs", "packaging", "cmake")
QUESTION = re.compile(r"^\s*#\s*(if|ifdef|ifndef|elif)\b.*"
                      r"(_WIN32|_WIN64|Q_OS_|__unix|__linux|__APPLE__|__MINGW|\bSIG[A-Z]+)")
HEADER = re.compile(r"^\s*#\s*include\s*<(windows|shellapi|io|unistd|fcntl|dlfcn|sys/\w+)\.h>")
SEAM = re.compile(r"(.+)_(posix|windows)$")


def sources():
    for folder in sorted(ROOT.iterdir()):
        if folder.is_dir() and folder.name not in WITHOUT_SOURCES and folder.name[0] != ".":
            yield from (path for path in sorted(folder.rglob("*"))
                        if path.suffix in {".h", ".cpp", ".inc"})


def lines_with(path, patterns):
    name = path.relative_to(ROOT).as_posix()
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if any(pattern.match(line) for pattern in patterns):
            yield f"{name}:{number}: {line.strip()}"


def problems_of(path):
    if path.name == "export.h":
        return
    if path.relative_to(ROOT).parts[0] in NOT_SHIPPED:
        yield from lines_with(path, [QUESTION])
        return
    seam = SEAM.match(path.stem)
    if not seam:
        yield from lines_with(path, [QUESTION, HEADER])
        return
    other = seam[1] + {"posix": "_windows", "windows": "_posix"}[seam[2]] + path.suffix
    if not path.with_name(other).exists():
        yield f"{path.relative_to(ROOT).as_posix()}: there is no {other}"


def main():
    files = list(sources())
    problems = [problem for path in files for problem in problems_of(path)]
    seams = sum(1 for path in files if SEAM.match(path.stem))
    if len(files) < 100 or seams < 10:
        problems.append(f"found only {len(files)} files and {seams} seams: is the root right?")
    print("\n".join(problems))
    print(f"{len(files)} files, {seams} of one system, {len(problems)} problems")
    sys.exit(1 if problems else 0)


main()
