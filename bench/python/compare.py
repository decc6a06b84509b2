#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""compare.py BUILD: writes docs/python-benchmarks.md.

Times the Python package in BUILD/python beside the packages of the field that Debian has, on the same
random numbers, and checks that both give the same before it compares. Needs the packages of the group
`python`. Takes a few minutes; let the machine rest meanwhile.
"""
import importlib.metadata
import os
import pathlib
import platform
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(pathlib.Path(sys.argv[1]).resolve() / "python"))

import igraph  # noqa: E402
import networkx  # noqa: E402
import numpy as np  # noqa: E402
import scipy.signal  # noqa: E402
import scipy.sparse.csgraph  # noqa: E402
import scipy.sparse.linalg  # noqa: E402
import scipy.stats  # noqa: E402

import nodalis  # noqa: E402

RNG = np.random.default_rng(7)


def least_time(function):
    """The least of several times in seconds, for a third of a second or once."""
    result = function()
    times, begun = [], time.perf_counter()
    while not times or (time.perf_counter() - begun < 0.33 and len(times) < 200):
        start = time.perf_counter()
        result = function()
        times.append(time.perf_counter() - start)
    return min(times), result


def in_words(seconds):
    for unit, size in (("s", 1), ("ms", 1e-3)):
        if seconds >= size:
            return f"{seconds / size:.3g} {unit}"
    return f"{seconds * 1e6:.3g} µs"


def ratio_in_words(ratio):
    digits = f"{ratio:.2g}" if ratio < 10 else f"{ratio:.0f}"
    return f"**{digits} x (slower)**" if float(digits) < 1 else f"{digits} x"


def compared(what, ours, theirs, tolerance=1e-5):
    """A row for each of the other tools, `theirs` a list of (name, function)."""
    our_time, our_result = least_time(ours)
    rows = []
    for name, function in theirs:
        their_time, their_result = least_time(function)
        np.testing.assert_allclose(our_result, their_result, rtol=tolerance, atol=tolerance)
        rows.append((what, in_words(our_time), name, in_words(their_time),
                     ratio_in_words(their_time / our_time)))
        print(" | ".join(rows[-1]), flush=True)
    return rows


# ---- graphs


def graph_of(nodes, density):
    weights = np.triu(RNG.uniform(0.1, 1, (nodes, nodes)).astype(np.float32), 1)
    weights[RNG.uniform(size=weights.shape) > density] = 0
    return weights + weights.T


def lengths_of(weights):
    return np.divide(1, weights, out=np.zeros(weights.shape), where=weights > 0)


def inverse_of(distances):
    return np.divide(1, distances, out=np.zeros(distances.shape), where=distances > 0)


def clustering_in_numpy(weights):
    roots = np.cbrt(weights.astype(float))
    neighbours = (weights > 0).sum(axis=1)
    triangles = np.einsum("ij,ji->i", roots @ roots, roots)
    return triangles / np.maximum(neighbours * (neighbours - 1), 1)


def local_efficiency_in_scipy(weights):
    """Node by node, as the usual packages do."""
    roots = np.cbrt(weights.astype(float))
    lengths = lengths_of(roots)
    values = np.zeros(len(weights))
    for node in range(len(weights)):
        near = np.flatnonzero(weights[node] > 0)
        if len(near) > 1:
            inside = scipy.sparse.csgraph.shortest_path(lengths[np.ix_(near, near)], directed=False)
            shares = np.outer(roots[node, near], roots[node, near]) * inverse_of(inside)
            values[node] = shares.sum() / (len(near) * (len(near) - 1))
    return values


def graph_rows(nodes, density):
    weights = graph_of(nodes, density)
    exact = weights.astype(float)
    of_networkx = networkx.from_numpy_array(exact)
    for _, _, facts in of_networkx.edges(data=True):
        facts["length"] = 1 / facts["weight"]
    of_igraph = igraph.Graph.Weighted_Adjacency(exact.tolist(), mode="undirected")
    of_igraph.es["length"] = [1 / weight for weight in of_igraph.es["weight"]]
    pairs = nodes * (nodes - 1)
    lengths = lengths_of(exact)
    other = graph_of(nodes, density)

    def of_nodes(values):
        return np.array([values[node] for node in range(nodes)])

    def called(text):
        return f"{text}, {nodes} nodes, density {density:g}"

    def unit(values):
        return np.array(values) / np.linalg.norm(values)

    def tree_weight(tree):
        return sum(facts["weight"] for _, _, facts in tree.edges(data=True))

    rows = compared(called("strength"), lambda: nodalis.strength(weights), [
        ("numpy, `sum`", lambda: weights.sum(axis=1)),
        ("igraph", lambda: of_igraph.strength(weights="weight")),
        ("networkx", lambda: of_nodes(dict(of_networkx.degree(weight="weight")))),
    ])
    rows += compared(called("clustering coefficient"), lambda: nodalis.clustering_coeff(weights), [
        ("numpy, matrix product", lambda: clustering_in_numpy(weights)),
        ("networkx", lambda: of_nodes(networkx.clustering(of_networkx, weight="weight"))
         * exact.max()),
    ] if nodes <= 100 else [("numpy, matrix product", lambda: clustering_in_numpy(weights))])
    efficiency = [
        ("scipy, `shortest_path`", lambda: inverse_of(
            scipy.sparse.csgraph.shortest_path(lengths, directed=False)).sum() / pairs),
        ("igraph, `distances`", lambda: inverse_of(
            np.array(of_igraph.distances(weights="length"))).sum() / pairs),
    ]
    if nodes <= 100:
        efficiency.append(("networkx, `harmonic_centrality`", lambda: of_nodes(
            networkx.harmonic_centrality(of_networkx, distance="length")).sum() / pairs))
    rows += compared(called("global efficiency"), lambda: nodalis.global_efficiency(weights),
                     efficiency)
    rows += compared(called("local efficiency"), lambda: nodalis.local_efficiency(weights), [
        ("scipy, node by node", lambda: local_efficiency_in_scipy(weights)),
    ])
    rows += compared(called("eigenvector centrality"),
                     lambda: nodalis.eigenvector_centrality(weights), [
        ("scipy, `eigsh`", lambda: abs(scipy.sparse.linalg.eigsh(exact, 1, which="LA")[1][:, 0])),
        ("igraph", lambda: unit(of_igraph.eigenvector_centrality(weights="weight"))),
        ("networkx, `_numpy`", lambda: of_nodes(
            networkx.eigenvector_centrality_numpy(of_networkx, weight="weight"))),
    ])
    rows += compared(called("spanning tree"), lambda: nodalis.minimum_spanning_tree(
        weights, mirrored=False).weights.sum(dtype=float), [
        ("scipy, of 1/w", lambda: (1 / scipy.sparse.csgraph.minimum_spanning_tree(
            np.triu(lengths)).data).sum()),
        ("igraph, of 1/w", lambda: sum(of_igraph.spanning_tree(weights="length").es["weight"])),
        ("networkx", lambda: tree_weight(networkx.maximum_spanning_tree(of_networkx))),
    ])
    rows += compared(called("spectral distance"), lambda: nodalis.spectral_euclidean(weights, other), [
        ("numpy, `eigvalsh`", lambda: np.linalg.norm(
            np.linalg.eigvalsh(exact) - np.linalg.eigvalsh(other.astype(float)))),
    ])
    return rows


def stack_rows():
    stack = np.stack([graph_of(100, 1.0) for _ in range(60)])
    return compared("global efficiency of a stack of 60 graphs of 100 nodes",
                    lambda: nodalis.global_efficiency(stack), [
        ("nodalis, `threads=1`", lambda: nodalis.global_efficiency(stack, threads=1)),
        ("scipy, `shortest_path`, in a loop", lambda: [
            inverse_of(scipy.sparse.csgraph.shortest_path(lengths_of(graph), directed=False)).sum()
            / 9900 for graph in stack]),
    ])


# ---- series


def series_rows():
    series = RNG.normal(size=(1200, 400)).cumsum(axis=0)
    confounds = RNG.normal(size=(1200, 36))
    sections = scipy.signal.butter(5, [0.01, 0.08], "bandpass", fs=0.5, output="sos")
    design = np.column_stack([np.ones(1200), np.arange(1200.0),
                              nodalis.signals.drift(1200, 2.0, 0.008), confounds])

    def called(text):
        return f"{text}, 400 series of 1,200 volumes"

    rows = compared(called("Butterworth band, forward and backward"),
                    lambda: nodalis.signals.butterworth(series, 2.0, high_pass=0.01, low_pass=0.08),
                    [("scipy, `sosfiltfilt`",
                      lambda: scipy.signal.sosfiltfilt(sections, series, axis=0))])
    rows += compared(called("linear detrend"), lambda: nodalis.signals.detrended(series), [
        ("scipy, `detrend`", lambda: scipy.signal.detrend(series, axis=0))])
    rows += compared(called("cleaning by 36 confounds and cosines"),
                     lambda: nodalis.signals.clean(series, confounds, tr=2.0, high_pass=0.008).series,
                     [("numpy, `lstsq`", lambda: series - design @ np.linalg.lstsq(
                         design, series, rcond=None)[0])])
    return rows


# ---- groups


def permutations_in_numpy(data, second, count):
    """Of two groups of equal size: the largest |t| of all edges, a permutation at a time."""
    subjects, half = len(data), second.sum()
    total, squares = data.sum(axis=0), (data**2).sum(axis=0)
    maxima = np.empty(count)
    for permutation, rows in enumerate(RNG.permuted(np.tile(np.arange(subjects), (count, 1)), axis=1)):
        one = data[rows[:half]].sum(axis=0)
        other = total - one
        within = squares - one**2 / half - other**2 / (subjects - half)
        spread = np.sqrt(within / (subjects - 2) * (1 / half + 1 / (subjects - half)))
        maxima[permutation] = abs((one / half - other / (subjects - half)) / spread).max()
    return np.quantile(maxima, 0.5)


def group_rows():
    data = RNG.normal(size=(40, 4950))
    second = np.arange(40) >= 20
    design = np.column_stack([np.ones(40), second])
    glm = nodalis.statistics.edgewise_glm
    rows = compared("t of 4,950 edges, 40 subjects",
                    lambda: glm(data, design, [0, 1], permutations=0).statistic,
                    [("scipy, `ttest_ind`",
                      lambda: scipy.stats.ttest_ind(data[20:], data[:20]).statistic)])
    # Other permutations: the medians of the largest t agree to a few hundredths.
    rows += compared("max-T of 1,000 permutations, 4,950 edges, 40 subjects",
                     lambda: np.quantile(
                         glm(data, design, [0, 1], permutations=1000).null_maximum, 0.5),
                     [("nodalis, `threads=1`", lambda: np.quantile(
                         glm(data, design, [0, 1], permutations=1000, threads=1).null_maximum, 0.5)),
                      ("numpy, two groups", lambda: permutations_in_numpy(data, second, 1000))],
                     tolerance=0.05)
    again = data + RNG.normal(size=data.shape)
    rows += compared("similarity of two sessions, 40 subjects, 4,950 edges, without a null",
                     lambda: nodalis.statistics.fingerprint(data, again, permutations=1).similarity,
                     [("numpy, `corrcoef`", lambda: np.corrcoef(data, again)[:40, 40:])])
    return rows


# ---- the page


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8").splitlines():
        if line.startswith("model name"):
            return " ".join(line.partition(":")[2].split())
    return platform.machine()


def linear_algebra():
    """The library that numpy's products and eigenvalues come from."""
    maps = pathlib.Path("/proc/self/maps").read_text(encoding="utf-8")
    return "OpenBLAS" if "openblas" in maps else "the reference BLAS"


def table(rows):
    lines = ["| What | nodalis | Beside | Takes | Ratio |", "|---|---|---|---|---|"]
    before = None
    for what, ours, name, theirs, ratio in rows:
        first = ("", "") if what == before else (what, ours)
        lines.append(f"| {first[0]} | {first[1]} | {name} | {theirs} | {ratio} |")
        before = what
    return "\n".join(lines)


def versions():
    packages = ("numpy", "scipy", "networkx", "igraph")
    found = [f"{name} {importlib.metadata.version(name)}" for name in packages]
    return ", ".join([f"nodalis {nodalis.version()}", f"Python {platform.python_version()}", *found])


def main():
    graphs = graph_rows(100, 0.2) + graph_rows(100, 1.0) + graph_rows(400, 0.2) + graph_rows(400, 1.0)
    graphs += stack_rows()
    page = f"""# How fast the Python package is

Made by `bench/python/compare.py build/release`, which checks before each comparison that both give the
same. Times are the least of several calls from Python, conversion of the arrays included; for igraph
and networkx the graph is already made. The ratio says how many times longer the other one takes; where
it is below 1, nodalis is the slower one, which is said. Packages are those of Debian 12.

- Processor: {processor()}, {os.cpu_count()} of its threads
- {versions()}; linear algebra of numpy and scipy: {linear_algebra()}

## Graphs

{table(graphs)}

## Series

{table(series_rows())}

## Groups

{table(group_rows())}
"""
    (ROOT / "docs" / "python-benchmarks.md").write_text(page, encoding="utf-8")


main()
