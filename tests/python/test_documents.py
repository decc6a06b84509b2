# SPDX-License-Identifier: GPL-3.0-or-later
"""What docs/python.md shows runs, and the functions that it names are there."""

import operator
import re

import numpy as np
import pytest

import nodalis
from conftest import SOURCES
from nodalis import signals

PAGE = (SOURCES / "docs/python.md").read_text(encoding="utf-8")
BLOCKS = re.findall(r"^```python\n(.*?)^```", PAGE, flags=re.M | re.S)


MEASURED = [
    *(f"{kind}_{axis}" for kind in ("trans", "rot") for axis in "xyz"),
    "csf",
    "white_matter",
    "global_signal",
]


def table_of_confounds(rng, volumes):
    columns = {}
    for name in MEASURED:
        values = rng.normal(size=volumes) * 1e-4
        change = np.concatenate([[np.nan], np.diff(values)])
        columns |= {name: values, f"{name}_power2": values**2}
        columns |= {f"{name}_derivative1": change, f"{name}_derivative1_power2": change**2}
    motion = np.column_stack([columns[name] for name in MEASURED[:6]])
    return columns | {"framewise_displacement": signals.framewise_displacement(motion)}


def test_the_examples_run(rng):
    groups = ["patient", "control"] * 6
    names = {
        "series": rng.normal(size=(100, 12)),
        "runs": [(rng.normal(size=(100, 12)), table_of_confounds(rng, 100)) for _ in groups],
        "participants": {"group": groups, "age": rng.uniform(20, 60, size=12)},
    }
    assert len(BLOCKS) == 2
    for block in BLOCKS:
        exec(block, names)  # pylint: disable=exec-used
    assert names["efficiency"].shape == (12,)
    assert names["found"].model.df == 12 - 3


def test_the_readme_has_the_first_example():
    readme = (SOURCES / "README.md").read_text(encoding="utf-8")
    assert "nodalis.minimum_spanning_tree(matrix)" in readme


@pytest.mark.parametrize("heading", ["Graphs", "Time series", "Groups"])
def test_the_functions_of_the_tables_are_there(heading):
    section = PAGE.split(f"\n### {heading}\n")[1].split("\n#")[0]
    rows = [line.split(" | ") for line in section.splitlines() if line.startswith("| ")][1:]
    named = {
        name
        for row in rows
        for name in re.findall(r"`((?:\w+\.)*\w+)(?:\(|`)", row[1])
        if not name.startswith("numpy.")
    }
    assert len(named) > 5
    for name in named - {"q"}:
        operator.attrgetter(name)(nodalis)
