#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks that no include runs upward and that no files include each other in a circle.

check_includes.py ROOT: the layers stand in layers.txt beside this file.
"""
import fnmatch
import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1]).resolve()
MODULES = ("nodalis", "signals", "statistics", "python", "plugin", "dataset", "engine", "results", "plots",
           "update", "host")


def read_layers():
    lines = (pathlib.Path(__file__).parent / "layers.txt").read_text(encoding="utf-8").splitlines()
    rows = [line.split() for line in lines if line.strip() and not line.startswith("#")]
    return [(pattern, int(layer)) for layer, pattern in rows]


def sources():
    for module in MODULES:
        for path in sorted((ROOT / module).rglob("*")):
            if path.suffix in {".h", ".cpp", ".inc"}:
                yield path.relative_to(ROOT).as_posix()


def included(name, names):
    text = (ROOT / name).read_text(encoding="utf-8")
    for target in re.findall(r'^\s*#\s*include\s*["<]([^">]+)[">]', text, flags=re.M):
        for candidate in (target, f"nodalis/include/{target}", f"nodalis/src/{target}"):
            if candidate in names:
                yield candidate


def circles(graph):
    """Files that reach themselves through includes."""
    for start in graph:
        seen, waiting = set(), list(graph[start])
        while waiting:
            name = waiting.pop()
            if name == start:
                yield start
                break
            if name not in seen:
                seen.add(name)
                waiting.extend(graph[name])


def main():
    patterns = read_layers()
    names = set(sources())
    layers, problems = {}, []
    for name in sorted(names):
        matching = [layer for pattern, layer in patterns if fnmatch.fnmatch(name, pattern)]
        if not matching:
            problems.append(f"{name}: has no layer in tests/layout/layers.txt")
        layers[name] = matching[0] if matching else 0
    graph = {name: sorted(set(included(name, names)) - {name}) for name in sorted(names)}
    for name, targets in graph.items():
        for target in targets:
            if layers[target] > layers[name]:
                problems.append(f"{name} (layer {layers[name]}) includes {target} "
                                f"(layer {layers[target]})")
    problems.extend(f"{name}: includes itself through others" for name in circles(graph))
    edges = sum(len(targets) for targets in graph.values())
    if len(names) < 50 or edges < 50:
        problems.append(f"found only {len(names)} files and {edges} includes: is the root right?")
    print("\n".join(problems))
    print(f"{len(names)} files, {edges} includes among them, {len(problems)} problems")
    sys.exit(1 if problems else 0)


main()
