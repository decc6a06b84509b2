# SPDX-License-Identifier: GPL-3.0-or-later
"""What may be given as a matrix, and what is refused."""

import subprocess
import sys
import threading

import numpy as np
import pytest

import nodalis
from conftest import random_graph

NODE_MEASURES = [
    nodalis.degree,
    nodalis.strength,
    nodalis.clustering_coeff,
    nodalis.local_efficiency,
    nodalis.nodal_global_efficiency,
    nodalis.eigenvector_centrality,
]
MEASURES = [
    *NODE_MEASURES,
    nodalis.global_efficiency,
    nodalis.local_efficiency_relaxations,
    nodalis.treatment,
    nodalis.minimum_spanning_tree,
    nodalis.spectrum,
    lambda matrix, **keywords: nodalis.spectral_euclidean(matrix, matrix[..., :5, :5], **keywords),
]


def in_form(array, form):
    if form == "C":
        return np.ascontiguousarray(array)
    if form == "Fortran":
        return np.asfortranarray(array)
    if form == "read-only":
        copied = array.copy()
        copied.setflags(write=False)
        return copied
    if form == "every third":
        wide = np.full(tuple(3 * size for size in array.shape), np.nan, array.dtype)
        view = wide[tuple(slice(1, None, 3) for _ in array.shape)]
        view[...] = array
        return view
    if form == "backwards":
        return np.ascontiguousarray(array[::-1, ::-1])[::-1, ::-1]
    if form == "unaligned":
        memory = np.zeros(array.nbytes + 1, np.uint8)[1:]
        view = memory.view(array.dtype).reshape(array.shape)
        view[...] = array
        assert not view.flags.aligned
        return view
    if form == "field of records":
        records = np.zeros(array.shape, [("flag", np.uint8), ("weight", array.dtype)])
        records["weight"] = array
        return records["weight"]
    return array.astype(array.dtype.newbyteorder())  # swapped


FORMS = [
    "C",
    "Fortran",
    "read-only",
    "every third",
    "backwards",
    "unaligned",
    "field of records",
    "swapped",
]


def parts(result):
    return result if isinstance(result, tuple) else (result,)


def assert_same(found, expected):
    for one, other in zip(parts(found), parts(expected)):
        assert np.asarray(one).tobytes() == np.asarray(other).tobytes()


@pytest.mark.parametrize("dtype", [np.float32, np.float64])
@pytest.mark.parametrize("form", FORMS)
def test_any_form_of_an_array_gives_the_same(form, dtype, graph, rng):
    lopsided = (graph + rng.uniform(0, 0.1, graph.shape)).astype(np.float32).astype(dtype)
    for measure in MEASURES:
        assert_same(measure(in_form(lopsided, form)), measure(lopsided.astype(np.float32)))


@pytest.mark.parametrize("form", FORMS)
def test_any_form_of_a_matrix_is_written_row_by_row(form, tmp_path):
    matrix = np.arange(6.0).reshape(2, 3)
    nodalis.to_csv(in_form(matrix, form), tmp_path / "m.csv")
    assert (tmp_path / "m.csv").read_text() == "0,1,2\n3,4,5\n"


@pytest.mark.parametrize("dtype", [bool, np.uint8, np.int64, np.float16, np.longdouble])
def test_other_numbers_become_float64(dtype):
    matrix = np.array([[0, 1, 0], [1, 0, 1], [0, 1, 0]])
    assert nodalis.degree(matrix.astype(dtype)).tolist() == [1, 2, 1]


def test_lists_are_taken():
    assert nodalis.strength([[0, 0.5], [0.5, 0]]).tolist() == [0.5, 0.5]


def test_arguments_stay_as_they_are(graph):
    graph[3, 4] = np.nan
    graph[2, 2] = 7
    before = graph.tobytes()
    for measure in MEASURES:
        measure(graph)
    assert graph.tobytes() == before


def test_a_double_is_rounded_once(rng):
    fine = random_graph(rng, 30, 0.5) * 1.1  # weights that single precision does not hold
    assert (fine.astype(np.float32) != fine).any()
    for measure in MEASURES:
        assert_same(measure(fine), measure(fine.astype(np.float32)))


def test_results_are_writable_and_the_caller_s(graph):
    for measure in MEASURES:
        for result in parts(measure(graph)):
            if isinstance(result, np.ndarray):
                assert result.flags.writeable
                result[...] = 0


def test_kinds_of_results(graph):
    for measure in NODE_MEASURES:
        assert measure(graph).dtype == np.float32
        assert measure(graph).shape == (40,)
        assert measure(np.stack([graph] * 3)).shape == (3, 40)
    assert isinstance(nodalis.global_efficiency(graph), float)
    assert nodalis.global_efficiency(graph[None]).shape == (1,)
    assert isinstance(nodalis.spectral_euclidean(graph, graph), float)
    assert nodalis.treatment(graph).dtype == np.float32
    tree = nodalis.minimum_spanning_tree(graph)
    assert (tree.weights.dtype, tree.edges.dtype) == (np.float32, np.int32)
    assert tree.edges.sum() == 2 * 39


def test_a_tree_above_the_diagonal_only(graph):
    whole = nodalis.minimum_spanning_tree(graph)
    upper = nodalis.minimum_spanning_tree(graph, mirrored=False)
    for both, one in zip(whole, upper):
        assert (np.triu(both) == one).all()
    stacked = nodalis.minimum_spanning_tree(graph[None], mirrored=False)
    for of_stack, one in zip(stacked, upper):
        assert (of_stack[0] == one).all()


@pytest.mark.parametrize("nodes", [0, 1, 2])
def test_small_graphs(nodes):
    for measure in NODE_MEASURES:
        assert measure(np.ones((nodes, nodes))).shape == (nodes,)
        assert measure(np.ones((0, nodes, nodes))).shape == (0, nodes)
        assert measure(np.ones((2, nodes, nodes))).shape == (2, nodes)
    assert nodalis.global_efficiency(np.ones((nodes, nodes))) == (1 if nodes == 2 else 0)
    assert nodalis.minimum_spanning_tree(np.ones((nodes, nodes))).edges.shape == (nodes, nodes)


@pytest.mark.parametrize("measure", MEASURES[:-1])
@pytest.mark.parametrize("shape", [(3, 4), (5,), (), (2, 3, 4), (2, 2, 3, 3)])
def test_wrong_shapes_are_told(measure, shape):
    with pytest.raises(ValueError) as error:
        measure(np.zeros(shape))
    assert str(error.value) == (
        f"matrix has shape {shape}: expected n x n, or k x n x n for a stack of them"
    )


def test_wrong_shapes_of_two_graphs_are_told():
    square = np.zeros((3, 3))
    with pytest.raises(ValueError, match=r"^b has shape \(3, 4\): expected n x n, or k x n x n"):
        nodalis.spectral_euclidean(square, np.zeros((3, 4)))
    with pytest.raises(ValueError, match="a is a stack of 2 graphs, b one of 3: expected as many"):
        nodalis.spectral_euclidean(np.zeros((2, 3, 3)), np.zeros((3, 3, 3)))
    with pytest.raises(ValueError, match=r"matrix has shape \(3,\): expected two dimensions"):
        nodalis.to_csv(np.zeros(3), "never.csv")


@pytest.mark.parametrize(
    ("matrix", "text"),
    [
        (np.zeros((2, 2), complex), "matrix holds complex128: expected real numbers"),
        (np.array([["a", "b"], ["c", "d"]]), "matrix holds <U1: expected real numbers"),
        (np.array([[None, 1], [1, None]]), "matrix holds object: expected real numbers"),
        (np.ma.masked_equal([[0, 1], [1, 0]], 1), "matrix is a masked array: fill what is masked"),
        (np.array([[0, 1e39], [1e39, 0]]), "row 1, column 0 beyond the range of single precision"),
    ],
)
def test_what_is_no_matrix_of_numbers_is_told(matrix, text):
    for measure in MEASURES[:-1]:
        with pytest.raises(ValueError) as error:
            measure(matrix)
        assert text in str(error.value)


def test_infinite_weights_are_no_edges():
    assert nodalis.degree([[0, np.inf, 1], [np.inf, 0, -np.inf], [1, -np.inf, 0]]).tolist() == [
        1,
        0,
        1,
    ]


def test_a_number_beyond_the_range_is_told_from_a_stack():
    stack = np.zeros((4, 2, 2))
    stack[3, 0, 1] = -1e300
    with pytest.raises(ValueError, match="row 0, column 1 beyond the range"):
        nodalis.strength(stack, threads=2)


def test_what_is_no_number_of_threads_is_told(graph):
    for measure in MEASURES:
        with pytest.raises(ValueError, match="^threads is -1: expected 0 or more$"):
            measure(graph, threads=-1)
        with pytest.raises(TypeError, match="^threads is '2': expected a whole number$"):
            measure(graph, threads="2")


@pytest.mark.parametrize("threads", [0, 1, 2, 7])
def test_a_stack_is_its_graphs_one_by_one_on_any_number_of_threads(threads, rng):
    stack = np.stack([random_graph(rng, 20, density) for density in np.linspace(0, 1, 11)])
    for measure in MEASURES:
        found = measure(stack, threads=threads)
        one_by_one = [parts(measure(graph)) for graph in stack]
        for place, part in enumerate(parts(found)):
            expected = np.stack([np.asarray(one[place], part.dtype) for one in one_by_one])
            assert part.tobytes() == expected.tobytes()


def test_stacks_in_any_form(rng):
    stack = np.stack([random_graph(rng, 12, 0.5) for _ in range(4)])
    for form in ("Fortran", "every third", "field of records"):
        for measure in MEASURES:
            assert_same(measure(in_form(stack, form)), measure(stack))


def test_a_stack_of_pairs_and_of_one(rng):
    stack = np.stack([random_graph(rng, 12, 0.5) for _ in range(4)])
    pairs = nodalis.spectral_euclidean(stack, stack[::-1])
    ones = nodalis.spectral_euclidean(stack, stack[0])
    assert pairs.tolist() == [nodalis.spectral_euclidean(a, b) for a, b in zip(stack, stack[::-1])]
    assert ones.tolist() == [nodalis.spectral_euclidean(a, stack[0]) for a in stack]
    assert ones.tolist() == nodalis.spectral_euclidean(stack[0], stack).tolist()


def test_spectra_give_the_same_distances(rng):
    stack = np.stack([random_graph(rng, 12, 0.5) for _ in range(4)])
    other = random_graph(rng, 9, 0.5)
    spectra, of_other = nodalis.spectrum(stack), nodalis.spectrum(other)
    assert (spectra.dtype, spectra.shape) == (np.float64, (4, 12))
    assert nodalis.between_spectra(spectra[1], of_other) == nodalis.spectral_euclidean(stack[1], other)
    for size in (0, 20):
        for a, b, of_a, of_b in (
            (stack, stack[::-1], spectra, spectra[::-1]),
            (stack, other, spectra, of_other),
            (other, stack, of_other, spectra),
        ):
            assert_same(
                nodalis.between_spectra(of_a, of_b, size), nodalis.spectral_euclidean(a, b, size)
            )
    with pytest.raises(ValueError, match="a holds 4 spectra, b 3: expected as many"):
        nodalis.between_spectra(spectra, spectra[:3])
    with pytest.raises(ValueError, match=r"b has shape \(1, 4, 12\): expected n, or k x n"):
        nodalis.between_spectra(spectra, spectra[None])
    with pytest.raises(ValueError, match="b is not in ascending order: expected a spectrum"):
        nodalis.between_spectra(spectra, spectra[0, ::-1])


def test_other_threads_run_while_a_function_computes(rng):
    """The interpreter never takes its lock away here, so that it must be given up."""
    large = random_graph(rng, 300, 1.0)
    interval = sys.getswitchinterval()
    sys.setswitchinterval(1e6)
    try:
        seen = any(_runs_beside(large) for _ in range(20))
    finally:
        sys.setswitchinterval(interval)
    assert seen


def _runs_beside(matrix):
    begun, ended = threading.Event(), []

    def work():
        begun.set()
        nodalis.local_efficiency(matrix)
        ended.append(True)

    thread = threading.Thread(target=work)
    thread.start()
    begun.wait()
    beside = not ended
    thread.join()
    return beside


@pytest.mark.parametrize("dtype", ["float32", "float64"])
def test_a_matrix_is_copied_at_most_once(dtype):
    """The most memory that a process ever had, before and after a measure of O(n^2) memory."""
    script = f"""
import resource
import numpy as np, nodalis
nodalis.degree(np.ones((3, 3)))
matrix = np.ones((5000, 5000), {dtype!r})
before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
nodalis.degree(matrix)
print((resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before) * 1024 / (4 * matrix.size))
"""
    said = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True, check=True)
    assert 0.9 < float(said.stdout) < 1.2


def test_files(tmp_path):
    matrix = np.array([[0, 1 / 3], [np.nan, -np.inf]])
    nodalis.to_csv(matrix, str(tmp_path / "größe"))
    assert (tmp_path / "größe.csv").read_text() == "0,0.33333334\nnan,-inf\n"
    with pytest.raises(OSError, match="cannot write .*missing"):
        nodalis.to_csv(matrix, tmp_path / "missing" / "m.csv")
