# SPDX-License-Identifier: GPL-3.0-or-later
"""python -m nodalis --version"""

import argparse

import nodalis


def main():
    """Tells the version, or how to get on."""
    parser = argparse.ArgumentParser(
        prog="python -m nodalis",
        description="Nodalis is used from Python: import nodalis, then help(nodalis).",
    )
    parser.add_argument("--version", action="version", version="nodalis " + nodalis.version())
    parser.parse_args()
    parser.print_help()


if __name__ == "__main__":
    main()
