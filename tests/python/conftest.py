# SPDX-License-Identifier: GPL-3.0-or-later
"""What the tests share: random graphs, the reference folder, and other tools where they are."""

import importlib
import os
import pathlib

import numpy as np
import pytest

import nodalis

SOURCES = pathlib.Path(os.environ["TESSERA_SOURCES"])
DATA = pathlib.Path(os.environ["TESSERA_DATA_DIR"])


def pytest_report_header():
    return f"nodalis {nodalis.version()} from {pathlib.Path(nodalis.__file__).parent}"


def tool(name):
    """Another package to compare with. It may be missing, unless TESSERA_REQUIRE_PYTHON is set."""
    if "TESSERA_REQUIRE_PYTHON" in os.environ:
        return importlib.import_module(name)
    return pytest.importorskip(name, reason=f"python3-{name} is not installed")


def reference(folder):
    """A folder of the reference numbers. It may be missing."""
    if not (DATA / folder).is_dir():
        pytest.skip(f"no reference numbers in {DATA / folder}")
    return DATA / folder


@pytest.fixture
def rng():
    return np.random.default_rng(20)


@pytest.fixture
def graph(rng):
    """A connected weighted graph whose weights are exact in single precision."""
    return random_graph(rng, 40, 0.4)


def random_graph(rng, nodes, density):
    weights = rng.uniform(0.1, 1, (nodes, nodes)).astype(np.float32)
    weights[rng.uniform(size=(nodes, nodes)) > density] = 0
    weights = np.triu(weights, 1)
    ring = np.arange(nodes - 1)
    weights[ring, ring + 1] = rng.uniform(0.1, 1, nodes - 1)
    return (weights + weights.T).astype(np.float64)
