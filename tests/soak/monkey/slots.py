# SPDX-License-Identifier: GPL-3.0-or-later
"""Which slots random events have reached: slots.py BUILD OUT...

BUILD is of the preset coverage, each OUT the folder of a run of it (tests/soak/monkey/run), which holds
what gcov has counted. A slot is what the sources of the windows hand to connect(), addAction() or
singleShot(), or declare as a slot: a member function or a lambda; signals and slots of Qt's own classes
have no code here and are no slots. Handlers of events, overridden functions of Qt, are counted apart.
"""

import collections
import glob
import json
import os
import re
import shutil
import subprocess
import sys

ROOT = os.path.realpath(os.path.join(os.path.dirname(__file__), "../../.."))
FOLDERS = ("plugin", "dataset", "engine", "results", "plots", "update", "host/workbench", "host/explorer", "host/tour")
CALL = re.compile(r"\b(connect|addAction|singleShot)\(")
EVENT = re.compile(r"\b(\w*[eE]vent|eventFilter)\([^;{}]*\)[^;{}]*\boverride\b")


def sources(pattern):
    return [path for folder in FOLDERS for path in sorted(glob.glob(f"{ROOT}/{folder}/{pattern}"))]


def arguments(text, start):
    """The arguments of a call whose bracket opens before start, each with its place."""
    depth, begin, found = 0, start, []
    quoted = False
    for place in range(start, len(text)):
        letter = text[place]
        if letter == '"' and text[place - 1] != "\\":
            quoted = not quoted
        if quoted:
            continue
        if letter in "([{":
            depth += 1
        elif letter in ")]}":
            depth -= 1
        if depth < 0 or (depth == 0 and letter == ","):
            found.append((begin, text[begin:place]))
            begin = place + 1
        if depth < 0:
            break
    return found


def wanted_of_calls(path):
    """Names of members, as Class::name, and (file, line) of lambdas, which are handed to a call."""
    with open(path, encoding="utf-8") as file:
        text = file.read()
    for call in CALL.finditer(text):
        given = arguments(text, call.end())
        for number, (begin, argument) in enumerate(given):
            if call[1] == "connect" and number < 2:
                continue  # the sender and its signal
            begin += len(argument) - len(argument.lstrip())
            argument = argument.strip()
            member = re.match(r"(?:Q?[oO]verload<.*>(?:::of)?\()?&(?:\w+::)*?(\w+::\w+)\)?$", argument)
            if member:
                yield member[1]
            elif argument.startswith("["):
                yield os.path.relpath(path, ROOT), text.count("\n", 0, begin) + 1


def members_of_headers(path):
    """Class::name of declared slots, and of handlers of events."""
    with open(path, encoding="utf-8") as file:
        text = re.sub(r"//.*", "", file.read())
    for body in re.finditer(r"\bclass (\w+)[^;{]*\{(.*?)\n\};", text, re.S):
        for section in re.finditer(r"(?:Q_SLOTS|slots):(.*?)(?=\b(?:public|private|protected|Q_SIGNALS|signals)\b[^;(]*:|\Z)",
                                   body[2], re.S):
            for name in re.finditer(r"(\w+)\([^;{}]*\)[^;{}]*[;{]", section[1]):
                yield "slot", f"{body[1]}::{name[1]}"
        for name in EVENT.finditer(body[2]):
            yield "event", f"{body[1]}::{name[1]}"


def told_by_gcov(path):
    told = subprocess.run(["gcov", "--json-format", "--stdout", path], cwd="/", check=True,
                          capture_output=True, text=True).stdout
    return [file for line in told.splitlines() for file in json.loads(line)["files"]]


def key_of(function, path):
    name = function["demangled_name"]
    if "{lambda" in name:
        return path, function["start_line"]
    member = re.search(r"(\w+::~?\w+)\(", name)
    return member[1] if member else name


def counts(build, outs):
    """How often each function was called: by Class::name, and by (file, line) of a lambda."""
    called = collections.Counter()
    known = set()
    build = os.path.realpath(build)
    for notes in glob.glob(f"{build}/**/*.gcno", recursive=True):
        if "/tests/" in notes or not any(f"/{folder}/" in notes for folder in FOLDERS):
            continue
        for out in outs:
            data = f"{os.path.realpath(out)}/gcov{notes[:-5]}.gcda"
            is_there = os.path.isfile(data)
            if is_there:
                shutil.copy(notes, os.path.dirname(data))
            for file in told_by_gcov(data if is_there else notes):
                path = os.path.relpath(os.path.realpath(os.path.join(build, file["file"])), ROOT)
                if not path.startswith(FOLDERS):
                    continue
                for function in file["functions"]:
                    key = key_of(function, path)
                    known.add(key)
                    called[key] += function["execution_count"]
    return known, called


def tell(what, wanted, known, called):
    there = sorted((key for key in wanted if key in known), key=str)
    never = [key for key in there if called[key] == 0]
    print(f"{what} reached: {len(there) - len(never)} of {len(there)}")
    for key in never:
        print("  never", key if isinstance(key, str) else f"{key[0]}:{key[1]}")


def main():
    slots = {key for path in sources("*.cpp") for key in wanted_of_calls(path)}
    events = set()
    for path in sources("*.h") + sources("*.cpp"):
        for kind, name in members_of_headers(path):
            (slots if kind == "slot" else events).add(name)
    known, called = counts(sys.argv[1], sys.argv[2:])
    tell("slots", slots, known, called)
    tell("handlers of events", events, known, called)


main()
