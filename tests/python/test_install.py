# SPDX-License-Identifier: GPL-3.0-or-later
"""What cmake --install puts somewhere works there, and moved; and it says how it is found."""

import os
import pathlib
import re
import subprocess
import sys

import nodalis

BUILD = pathlib.Path(os.environ["NODALIS_BUILT_IN"]).parent


def test_an_installed_copy_works_when_it_is_moved(tmp_path):
    said = subprocess.run(
        [
            os.environ["CMAKE_COMMAND"],
            *("--install", BUILD, "--component", "python", "--prefix", tmp_path / "first"),
        ],
        capture_output=True,
        text=True,
        check=True,
    ).stdout
    path = pathlib.Path(re.search(r"For import nodalis set PYTHONPATH=(.*)", said)[1])
    assert (path / "nodalis/__init__.py").exists()
    (tmp_path / "first").rename(tmp_path / "moved")
    moved = tmp_path / "moved" / path.relative_to(tmp_path / "first")
    script = "import nodalis; print(nodalis.__file__, nodalis.global_efficiency([[0, 1], [1, 0]]))"
    said = subprocess.run(
        [sys.executable, "-c", script],
        env={"PYTHONPATH": str(moved)},
        capture_output=True,
        text=True,
        check=True,
    ).stdout
    assert said == f"{moved / 'nodalis/__init__.py'} 1.0\n"


def test_all_of_the_package_is_installed(tmp_path):
    subprocess.run(
        [
            os.environ["CMAKE_COMMAND"],
            *("--install", BUILD, "--component", "python", "--prefix", tmp_path),
        ],
        capture_output=True,
        check=True,
    )
    installed = {path.name for path in tmp_path.rglob("nodalis/*")} - {"__pycache__"}
    built = {path.name for path in pathlib.Path(nodalis.__file__).parent.iterdir()}
    libraries = {name for name in installed if name.startswith("libnodalis.so")}
    assert installed - libraries == built - {"__pycache__"}
    assert libraries
