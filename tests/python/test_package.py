# SPDX-License-Identifier: GPL-3.0-or-later
"""The package as a whole: it has all of the library, and says what each function does."""

import doctest
import importlib
import inspect
import os
import pathlib
import re
import subprocess
import sys

import numpy as np
import pytest

import nodalis
from conftest import SOURCES

MODULES = ["nodalis"] + [
    f"nodalis.{name}"
    for name in ("confounds", "matrices", "measures", "signals", "spectra", "statistics", "trees")
]
PUBLIC = [
    getattr(module, name)
    for module in (nodalis, nodalis.signals, nodalis.statistics)
    for name in module.__all__
    if not inspect.ismodule(getattr(module, name))
]
FUNCTIONS = [thing for thing in PUBLIC if inspect.isfunction(thing)]


def name_of(thing):
    return f"{thing.__module__}.{thing.__name__}"


def test_the_package_is_the_one_that_was_built():
    assert pathlib.Path(nodalis.__file__).is_relative_to(os.environ["NODALIS_BUILT_IN"])


def exported_functions():
    names = set()
    for header in (SOURCES / "nodalis/include/nodalis").glob("*.h"):
        text = re.sub(r"//[^\n]*", "", header.read_text(encoding="utf-8"))
        if header.name != "export.h":
            names |= set(re.findall(r"\bNODALIS_API\b[^;(]*?(\w+)\s*\(", text))
    return names


def test_every_function_of_the_library_is_there():
    exported = exported_functions()
    assert len(exported) >= 12
    assert exported == {name for name in nodalis.__all__ if name.islower()} - {
        "signals",
        "statistics",
    }


def test_every_function_of_the_library_reaches_the_extension():
    assert exported_functions() <= set(dir(nodalis._nodalis))


@pytest.mark.parametrize("name", MODULES)
def test_examples(name, tmp_path):
    module = importlib.import_module(name)
    names = {"np": np, "nodalis": nodalis, "folder": tmp_path}
    found = doctest.testmod(module, extraglobs=names)
    assert found.failed == 0
    assert found.attempted > 0


@pytest.mark.parametrize("function", FUNCTIONS, ids=name_of)
def test_docstrings_are_whole(function):
    text = inspect.getdoc(function)
    assert "\n>>> " in text
    if function is nodalis.version:
        return
    sections = re.findall(r"^(\w+)\n-+$", text, flags=re.M)
    expected = ["Parameters", "Returns", "Raises", "References", "Examples"]
    if function is nodalis.to_csv:
        expected = ["Parameters", "Raises", "Examples"]
    elif function is nodalis.signals.strategies:
        expected = ["Returns", "References", "Examples"]
    elif function is nodalis.signals.read_confounds:
        expected = ["Parameters", "Returns", "Raises", "References", "Examples"]
    assert sections == expected
    described = text[text.find("Parameters\n") : text.find("\nRaises")]
    for parameter in inspect.signature(function).parameters:
        assert re.search(rf"^(.*, )?{parameter}(,.*)?( :.*)?$", described, flags=re.M), parameter


@pytest.mark.parametrize(
    "kind", [thing for thing in PUBLIC if inspect.isclass(thing)], ids=name_of
)
def test_results_have_named_and_described_fields(kind):
    assert issubclass(kind, tuple)
    text = inspect.getdoc(kind)
    for field in kind._fields:
        assert re.search(rf"^(.*, )?{field}(,.*)? :", text, flags=re.M), field


def test_version_from_the_command_line():
    said = subprocess.run(
        [sys.executable, "-m", "nodalis", "--version"], capture_output=True, text=True, check=True
    ).stdout
    declared = re.search(
        r"project\(nodalis VERSION ([0-9.]+)", (SOURCES / "nodalis/CMakeLists.txt").read_text()
    )[1]
    assert said == f"nodalis {declared}\n"
    assert nodalis.__version__ == nodalis.version() == declared
