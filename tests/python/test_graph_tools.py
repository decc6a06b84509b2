# SPDX-License-Identifier: GPL-3.0-or-later
"""Against networkx, igraph and scipy, at 1e-6. Differences of definition are said where they are."""

import numpy as np
import pytest

import nodalis
from conftest import random_graph, tool

DENSITIES = [0.1, 0.4, 1.0]


@pytest.fixture(params=DENSITIES, ids=lambda density: f"density-{density}")
def weights(request, rng):
    return random_graph(rng, 35, request.param)


def near(expected):
    return pytest.approx(np.asarray(expected, float), rel=1e-6, abs=1e-6)


def in_networkx(weights):
    networkx = tool("networkx")
    graph = networkx.from_numpy_array(weights)
    for _, _, facts in graph.edges(data=True):
        facts["length"] = 1 / facts["weight"]
    return networkx, graph


def of_nodes(values):
    return [values[node] for node in sorted(values)]


# ---- networkx


def test_networkx_degree_and_strength(weights):
    _, graph = in_networkx(weights)
    assert nodalis.degree(weights).tolist() == of_nodes(dict(graph.degree()))
    assert nodalis.strength(weights) == near(of_nodes(dict(graph.degree(weight="weight"))))


def test_networkx_clustering_divides_by_the_largest_weight(weights):
    networkx, graph = in_networkx(weights)
    theirs = np.array(of_nodes(networkx.clustering(graph, weight="weight")))
    assert nodalis.clustering_coeff(weights) == near(theirs * weights.max())
    assert nodalis.clustering_coeff(weights) != near(theirs)


def test_networkx_clustering_of_ones_is_the_same(weights):
    networkx, graph = in_networkx((weights > 0).astype(float))
    assert nodalis.clustering_coeff(weights > 0) == near(of_nodes(networkx.clustering(graph)))


def test_networkx_efficiencies_take_no_weights(weights):
    ones = (weights > 0).astype(float)
    networkx, graph = in_networkx(weights)
    assert nodalis.global_efficiency(ones) == near(networkx.global_efficiency(graph))
    assert nodalis.local_efficiency(ones).mean() == near(networkx.local_efficiency(graph))
    assert nodalis.global_efficiency(weights) != near(networkx.global_efficiency(graph))


def test_networkx_harmonic_centrality_is_not_divided_by_the_nodes(weights):
    networkx, graph = in_networkx(weights)
    theirs = np.array(of_nodes(networkx.harmonic_centrality(graph, distance="length")))
    assert nodalis.nodal_global_efficiency(weights) == near(theirs / 34)
    assert nodalis.global_efficiency(weights) == near(theirs.mean() / 34)


def test_networkx_eigenvector_centrality(weights):
    networkx, graph = in_networkx(weights)
    theirs = of_nodes(networkx.eigenvector_centrality_numpy(graph, weight="weight"))
    assert nodalis.eigenvector_centrality(weights) == near(theirs)


def test_networkx_calls_the_tree_of_strong_connections_a_maximum(weights):
    networkx, graph = in_networkx(weights)
    for ours, theirs in (
        (nodalis.minimum_spanning_tree(weights), networkx.maximum_spanning_tree(graph)),
        (
            nodalis.minimum_spanning_tree(weights, weights_are_lengths=True),
            networkx.minimum_spanning_tree(graph),
        ),
    ):
        expected = networkx.to_numpy_array(theirs, nodelist=range(35))
        assert ours.weights == near(expected)
        assert (ours.edges == (expected > 0)).all()


def test_networkx_spectrum(weights):
    networkx, graph = in_networkx(weights)
    theirs = np.linalg.norm(networkx.adjacency_spectrum(graph).real)
    assert nodalis.spectral_euclidean(weights, np.zeros((1, 1))) == near(theirs)


# ---- igraph


def in_igraph(weights):
    igraph = tool("igraph")
    graph = igraph.Graph.Weighted_Adjacency(weights.tolist(), mode="undirected")
    graph.es["length"] = [1 / weight for weight in graph.es["weight"]]
    return graph


def test_igraph_degree_and_strength(weights):
    graph = in_igraph(weights)
    assert nodalis.degree(weights).tolist() == graph.degree()
    assert nodalis.strength(weights) == near(graph.strength(weights="weight"))


def test_igraph_transitivity_takes_weights_otherwise(weights):
    graph = in_igraph(weights)
    ones = graph.transitivity_local_undirected(mode="zero")
    assert nodalis.clustering_coeff(weights > 0) == near(ones)
    # With weights it is Barrat's: means of two edges at the node, the third one not at all.
    theirs = graph.transitivity_local_undirected(weights="weight", mode="zero")
    assert nodalis.clustering_coeff(weights) != near(theirs)


def test_igraph_harmonic_centrality(weights):
    graph = in_igraph(weights)
    theirs = graph.harmonic_centrality(weights="length", normalized=True)
    assert nodalis.nodal_global_efficiency(weights) == near(theirs)


def test_igraph_eigenvector_centrality_is_1_at_most_instead_of_of_norm_1(weights):
    theirs = np.array(in_igraph(weights).eigenvector_centrality(weights="weight"))
    assert theirs.max() == near(1)
    assert nodalis.eigenvector_centrality(weights) == near(theirs / np.linalg.norm(theirs))


def test_igraph_spanning_tree_is_of_lengths(weights):
    tree = in_igraph(weights).spanning_tree(weights="weight")
    ours = nodalis.minimum_spanning_tree(weights, weights_are_lengths=True, mirrored=False)
    assert sorted(tree.get_edgelist()) == list(zip(*np.nonzero(ours.edges)))


# ---- scipy


def test_scipy_spanning_tree_takes_lengths_and_one_triangle(weights):
    sparse = tool("scipy.sparse.csgraph")
    theirs = sparse.minimum_spanning_tree(np.triu(weights)).toarray()
    ours = nodalis.minimum_spanning_tree(weights, weights_are_lengths=True, mirrored=False)
    assert ours.weights == near(theirs)


def test_scipy_shortest_paths(weights):
    sparse = tool("scipy.sparse.csgraph")
    lengths = np.divide(1, weights, out=np.zeros_like(weights), where=weights > 0)
    distances = sparse.shortest_path(lengths, directed=False)
    inverse = np.divide(1, distances, out=np.zeros_like(distances), where=distances > 0)
    assert nodalis.nodal_global_efficiency(weights) == near(inverse.sum(axis=1) / 34)


def test_numpy_spectra(rng):
    one, other = random_graph(rng, 20, 0.5), random_graph(rng, 30, 0.5)
    padded = np.zeros((30, 30))
    padded[:20, :20] = one
    theirs = np.linalg.norm(np.linalg.eigvalsh(padded) - np.linalg.eigvalsh(other))
    assert nodalis.spectral_euclidean(one, other) == near(theirs)
