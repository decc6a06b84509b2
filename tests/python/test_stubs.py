# SPDX-License-Identifier: GPL-3.0-or-later
"""The type stubs agree with the package."""

import ast
import importlib
import inspect
import pathlib
import subprocess
import sys

import pytest

import nodalis
from conftest import tool

FOLDER = pathlib.Path(nodalis.__file__).parent
STUBS = sorted(path for path in FOLDER.glob("*.pyi") if path.stem != "_nodalis")


def module_of(stub):
    name = "nodalis" if stub.stem == "__init__" else f"nodalis.{stub.stem}"
    return importlib.import_module(name)


def parameters_of_stub(node):
    """Names with their kinds, and whether there is a default."""
    arguments = node.args
    assert not (arguments.vararg or arguments.kwarg or arguments.posonlyargs)
    required = len(arguments.args) - len(arguments.defaults)
    return [
        (argument.arg, inspect.Parameter.POSITIONAL_OR_KEYWORD, place >= required)
        for place, argument in enumerate(arguments.args)
    ] + [
        (argument.arg, inspect.Parameter.KEYWORD_ONLY, default is not None)
        for argument, default in zip(arguments.kwonlyargs, arguments.kw_defaults)
    ]


def parameters_of(function):
    return [
        (name, parameter.kind, parameter.default is not inspect.Parameter.empty)
        for name, parameter in inspect.signature(function).parameters.items()
    ]


def test_there_is_a_stub_for_each_module():
    modules = {path.stem for path in FOLDER.glob("*.py")} - {"__main__", "_arguments"}
    assert {stub.stem for stub in STUBS} == modules
    assert (FOLDER / "py.typed").exists()


@pytest.mark.parametrize("stub", STUBS, ids=lambda stub: stub.stem)
def test_names_and_signatures(stub):
    module = module_of(stub)
    tree = ast.parse(stub.read_text(encoding="utf-8"))
    functions = {node.name: node for node in tree.body if isinstance(node, ast.FunctionDef)}
    classes = {node.name: node for node in tree.body if isinstance(node, ast.ClassDef)}
    own = {
        name: thing
        for name, thing in vars(module).items()
        if getattr(thing, "__module__", None) == module.__name__ and not name.startswith("_")
    }
    assert set(functions) | set(classes) == set(own)
    for name, node in functions.items():
        assert parameters_of_stub(node) == parameters_of(own[name]), name
        assert node.returns is not None
    for name, node in classes.items():
        fields = [field.target.id for field in node.body]
        assert tuple(fields) == own[name]._fields, name


@pytest.mark.parametrize("stub", STUBS, ids=lambda stub: stub.stem)
def test_the_same_names_are_public(stub):
    tree = ast.parse(stub.read_text(encoding="utf-8"))
    declared = [
        ast.literal_eval(node.value)
        for node in tree.body
        if isinstance(node, ast.Assign) and node.targets[0].id == "__all__"
    ]
    module = module_of(stub)
    assert declared == ([module.__all__] if hasattr(module, "__all__") else [])


def test_the_checker_of_stubs_agrees(tmp_path):
    tool("mypy")
    allowed = tmp_path / "allowed"
    allowed.write_text(r"nodalis\._nodalis.*" + "\n")
    found = subprocess.run(
        [sys.executable, "-m", "mypy.stubtest", "nodalis", "--allowlist", str(allowed)],
        cwd=tmp_path,
        capture_output=True,
        text=True,
        env={"PYTHONPATH": str(FOLDER.parent), "MYPYPATH": str(FOLDER.parent)},
        check=False,
    )
    assert found.returncode == 0, found.stdout + found.stderr
