# SPDX-License-Identifier: GPL-3.0-or-later
"""Every graph of the reference folder, against values that other tools computed in double."""

import json

import numpy as np
import pytest

import nodalis
from conftest import DATA, reference

NAMES = sorted(
    path.name.removesuffix(".expected.json")
    for path in (DATA / "graphs").glob("*.expected.json")
    if not path.name.startswith(("treat_", "signed_", "spectral_pairs"))
) or ["the folder is missing"]


def matrix(name):
    path = reference("graphs") / f"{name}.csv"
    if path.stat().st_size == 0:
        return np.empty((0, 0))
    return np.loadtxt(path, delimiter=",", ndmin=2)


def expected(name):
    return json.loads((reference("graphs") / f"{name}.expected.json").read_text())


def assert_near(found, wanted, tolerance=1e-6):
    assert found == pytest.approx(np.array(wanted, float), rel=tolerance, abs=tolerance)


@pytest.mark.parametrize("name", NAMES)
def test_every_measure(name):
    graph, measures = matrix(f"{name}.matrix"), expected(name)["measures"]
    wanted = {key: facts.get("value") for key, facts in measures.items()}
    for key in (
        "degree",
        "strength",
        "clustering_coeff",
        "local_efficiency",
        "global_efficiency",
        "nodal_global_efficiency",
    ):
        assert_near(getattr(nodalis, key)(graph), wanted[key])
    gap = measures["eigenvector_centrality"].get("spectral_gap_relative") or 1.0
    assert_near(
        nodalis.eigenvector_centrality(graph),
        wanted["eigenvector_centrality"],
        1e-6 / min(gap, 1.0),
    )
    assert_near(
        nodalis.spectral_euclidean(graph, np.empty((0, 0))),
        np.linalg.norm(wanted["spectrum"]),
    )
    tree = nodalis.minimum_spanning_tree(graph)
    found = [[i, j] for i, j in zip(*np.nonzero(np.triu(tree.edges)))]
    assert found == [edge[:2] for edge in measures["mst"]["edges"]]
    assert_near(np.triu(tree.weights).sum(dtype=float), measures["mst"]["total_weight"])


def test_treatment():
    paths = sorted(reference("graphs").glob("treat_*.raw.csv"))
    assert paths
    for path in paths:
        name = path.name.removesuffix(".raw.csv")
        wanted = matrix(f"{name}.matrix").astype(np.float32)
        assert (nodalis.treatment(matrix(f"{name}.raw")) == wanted).all(), name


def test_spectral_distances():
    pairs = expected("spectral_pairs")["pairs"]
    assert pairs
    for pair in pairs:
        a, b = matrix(pair["A"] + ".matrix"), matrix(pair["B"] + ".matrix")
        assert_near(nodalis.spectral_euclidean(a, b, pair["size"]), pair["value"])


def test_signed_weights():
    graph = matrix("signed_nitime28.matrix")
    wanted = expected("signed_nitime28")["measures"]
    assert_near(nodalis.degree(graph), wanted["degree_nonzero"]["value"])
    assert_near(nodalis.strength(graph), wanted["strength"]["value"])
    positive = nodalis.clustering_coeff(np.maximum(graph, 0))
    assert (nodalis.clustering_coeff(graph) == positive).all()
