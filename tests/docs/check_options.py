#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks that the manual page and the user's guide tell of the options that the program has.

check_options.py ROOT PROGRAM: the manual page has all options of all commands and no others; the
guide has those of the commands that it tells of, and no others.
"""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(sys.argv[1])
PROGRAM = sys.argv[2]
COMMANDS = ("example", "import", "compute", "graph", "distance", "connectome", "cohort",
            "group", "explore", "figure", "tour")


def help_of(*command):
    done = subprocess.run([PROGRAM, *command, "--help"], check=True, capture_output=True, text=True)
    return done.stdout


def options_in(text):
    return set(re.findall(r"(?<![\w-])--[a-z][a-z-]*[a-z]", text))


def main():
    of_commands, synopsis_of = {}, {}
    for command in COMMANDS:
        synopsis, _, listed = help_of(command).partition("\nOptions:\n")
        of_commands[command] = options_in(listed) - {"--help"}
        synopsis_of[command] = options_in(synopsis.split("\n\n")[0])
    known = options_in(help_of()).union(*of_commands.values())
    manual = (ROOT / "packaging" / "Corvane.1").read_text(encoding="utf-8").replace("\\-", "-")
    guide = (ROOT / "docs" / "users-guide.md").read_text(encoding="utf-8")
    readme = (ROOT / "README.md").read_text(encoding="utf-8")

    problems = [f"the manual page lacks {name}" for name in known - options_in(manual)]
    problems += [f"the manual page has {name}, the program has not"
                 for name in options_in(manual) - known]
    wanted = set().union(*(of_commands[command]
                           for command in ("import", "compute", "graph", "distance", "connectome",
                                           "cohort", "group", "explore", "figure")))
    problems += [f"the synopsis and the options of {command} differ in {name}"
                 for command in COMMANDS
                 for name in of_commands[command] ^ synopsis_of[command]]
    problems += [f"the user's guide lacks {name}" for name in wanted - options_in(guide)]
    for page, text in (("the user's guide", guide), ("the README", readme)):
        own = re.sub(r"(cmake -|packaging/windows/)[^`\n]*", "", text)  # whose options are others
        problems += [f"{page} has {name}, the program has not"
                     for name in options_in(own) - known]
    missing = [command for command in COMMANDS if f"\\fB{command}" not in manual
               and f".B {command}\n" not in manual]
    problems += [f"the manual page does not explain {command}" for command in missing]

    print("\n".join(sorted(problems)))
    print(f"{len(known)} options, {len(problems)} problems")
    sys.exit(1 if problems or len(known) < 15 else 0)


main()
