# SPDX-License-Identifier: GPL-3.0-or-later
"""Group statistics: reference numbers, scipy, and the same on any number of threads."""

import csv
import json
import subprocess
import sys

import numpy as np
import pytest

from conftest import reference, tool
from nodalis import statistics

THRESHOLD = 2.6870134922422126


def near(expected, tolerance=1e-6):
    return pytest.approx(np.asarray(expected), rel=tolerance, abs=tolerance)


# ---- the network of 48 subjects, as three other programs compute it


@pytest.fixture
def study():
    folder = reference("reference") / "nbs"
    with (folder / "frontal2D.csv").open(newline="", encoding="utf-8") as file:
        rows = list(csv.reader(file))
    table = {name: [row[i] for row in rows[1:]] for i, name in enumerate(rows[0][:3])}
    columns = np.array([row[3:] for row in rows[1:]], float)
    matrices = np.zeros((48, 28, 28))
    second, first = np.tril_indices(28, -1)  # column by column of the upper triangle
    matrices[:, first, second] = columns
    matrices[:, second, first] = columns
    permutations = np.loadtxt(folder / "nbs_permutations_first1000.csv", delimiter=",", dtype=int)
    facts = json.loads((folder / "nbs_reference.json").read_text())["group"]
    return matrices, statistics.design("Group", table), permutations, facts


def in_our_order(values):
    matrix = np.zeros((28, 28))
    second, first = np.tril_indices(28, -1)
    matrix[first, second] = values
    return matrix[np.triu_indices(28, 1)]


@pytest.mark.parametrize(
    ("sides", "key"), [("both", "both"), ("greater", "right"), ("less", "left")]
)
def test_networks(study, sides, key):
    data, design, given, facts = study
    found = statistics.nbs(
        data, design, "group = Group[Patient]", THRESHOLD, sides=sides, given=given
    )
    wanted = facts[f"{key}_k1000"]
    assert len(found.components) == len(wanted)
    for component, other in zip(found.components, wanted):
        assert component.side == sides
        assert component.edges.shape == (other["edges"], 2)
        assert component.intensity == near(other["intensity"], 1e-10)
        # The others give b/1000, which can be 0; ours is (b + 1)/1001.
        assert component.p_extent == near((1000 * other["p_extent_b_over_k"] + 1) / 1001, 1e-12)
        assert component.p_intensity == near(
            (1000 * other["p_intensity_b_over_k"] + 1) / 1001, 1e-12
        )
        t = np.zeros((28, 28))
        t[np.triu_indices(28, 1)] = found.model.statistic
        of_edges = t[tuple(component.edges.T)]
        assert (abs(of_edges) > THRESHOLD).all()
        assert (abs(of_edges) - THRESHOLD).sum() == near(component.intensity, 1e-10)


def test_edges_one_by_one(study):
    data, design, given, facts = study
    assert design.columns == ["(Intercept)", "Group[Patient]"]
    found = statistics.edgewise_glm(data, design, "group = Group[Patient]", given=given)
    t = np.loadtxt(reference("reference") / "nbs/nbs_group_t.csv", delimiter=",").ravel()
    assert found.statistic == near(in_our_order(t), 1e-10)
    assert found.df == 46
    assert found.p.min() == near(facts["uncorrected_p_min"], 1e-12)
    assert found.q.min() == near(facts["fdr_bh_q_min"], 1e-12)
    assert found.p_fwe.min() == near(facts["maxT_k1000_p_min_b1"], 1e-12)
    assert np.sort(found.null_maximum)[950] == near(facts["maxT_k1000_crit95"], 1e-10)
    assert (found.permutations, found.exhaustive) == (1000, False)
    assert (found.p_perm <= found.p_fwe).all() and found.p_perm.min() >= 1 / 1001


# ---- scipy


@pytest.fixture
def groups(rng):
    """Two groups of subjects whose first edges differ."""
    data = rng.normal(size=(30, 15))
    data[14:, :4] += 1
    return data, np.column_stack([np.ones(30), np.arange(30) >= 14])


def test_scipy_t_of_two_groups(groups):
    stats = tool("scipy.stats")
    data, design = groups
    theirs = stats.ttest_ind(data[14:], data[:14])
    found = statistics.edgewise_glm(data, design, [0, 1], permutations=0)
    assert found.statistic == near(theirs.statistic)
    assert found.p == near(theirs.pvalue)
    assert found.estimate == near(data[14:].mean(axis=0) - data[:14].mean(axis=0))
    assert found.p_perm is None and found.p_fwe is None and found.null_maximum is None
    one_sided = stats.ttest_ind(data[14:], data[:14], alternative="greater")
    greater = statistics.edgewise_glm(data, design, [0, 1], permutations=0, sides="greater")
    assert greater.p == near(one_sided.pvalue)


def test_scipy_f_of_three_groups(rng):
    stats = tool("scipy.stats")
    data = rng.normal(size=(30, 6))
    table = {"group": ["a"] * 9 + ["b"] * 10 + ["c"] * 11}
    design = statistics.design("group", table)
    found = statistics.edgewise_glm(
        data, design, "any = group[b]; group[c]", permutations=0
    )
    theirs = stats.f_oneway(data[:9], data[9:19], data[19:])
    assert found.statistic == near(theirs.statistic)
    assert found.p == near(theirs.pvalue)
    assert (found.tested, found.df, found.estimate.size) == (2, 27, 0)


def test_scipy_permutations_of_pairs(rng):
    """One sample: signs change, all 2^8 of them."""
    stats = tool("scipy.stats")
    data = rng.normal(0.5, size=(8, 3))
    found = statistics.edgewise_glm(data, np.ones((8, 1)), [1], sides="greater")
    assert (found.permutations, found.exhaustive) == (256, True)
    theirs = stats.permutation_test(
        (data,),
        lambda x, axis: stats.ttest_1samp(x, 0, axis=axis).statistic,
        permutation_type="samples",
        alternative="greater",
        n_resamples=np.inf,
    )
    assert found.p_perm == near(theirs.pvalue)


def test_scipy_correlation_of_motion(rng):
    stats = tool("scipy.stats")
    motion, data = rng.uniform(size=25), rng.normal(size=(25, 6))
    distances = rng.uniform(10, 100, size=6)
    found = statistics.qcfc(data, motion, distances=distances)
    theirs = [stats.pearsonr(motion, edge) for edge in data.T]
    assert found.r == near([one.statistic for one in theirs])
    assert found.p == near([one.pvalue for one in theirs])
    assert found.distance_dependence == near(stats.spearmanr(found.r, distances).correlation)
    assert found.median_absolute_r == near(np.median(abs(found.r)))
    of_nodes = np.zeros((4, 4))
    of_nodes[np.triu_indices(4, 1)] = distances
    assert statistics.qcfc(data, motion, distances=of_nodes)[3:] == found[3:]


def test_partial_correlation_of_motion(rng):
    motion, age, data = rng.uniform(size=25), rng.normal(size=25), rng.normal(size=(25, 6))
    beside = np.column_stack([np.ones(25), age])
    left = [
        y - beside @ np.linalg.lstsq(beside, y, rcond=None)[0]
        for y in (motion, *data.T)
    ]
    found = statistics.qcfc(data, motion, covariates=age[:, None], columns=["age"])
    assert found.r == near([np.corrcoef(left[0], edge)[0, 1] for edge in left[1:]])
    assert found.df == 22
    named = statistics.qcfc(data, motion, covariates=statistics.design("age", {"age": age}))
    assert named.r == near(found.r)


def test_distances_of_one_measure_are_an_analysis_of_variance(rng):
    stats = tool("scipy.stats")
    values = rng.normal(size=24) + np.repeat([0, 1, 1.5], 8)
    design = statistics.design("C(group)", {"group": np.repeat([1, 2, 3], 8)})
    found = statistics.distance_anova(
        abs(values[:, None] - values), design, np.eye(3)[1:], permutations=999
    )
    theirs = stats.f_oneway(*values.reshape(3, 8))
    assert found.f == near(theirs.statistic)
    assert (found.df_tested, found.df_residual) == (2, 21)
    assert found.p == (np.sum(found.null_f >= found.f * (1 - 1e-12)) + 1) / 1000


def test_fisher_z_is_arctanh_but_for_the_ends(rng):
    r = rng.uniform(-1, 1, size=(4, 6))
    assert statistics.fisher_z(r).z == near(np.arctanh(r), 1e-12)
    assert statistics.fisher_z(r).clipped.shape == (0, 2)
    found = statistics.fisher_z([[1, -1, 0.5]])
    assert found.z[0] == near([np.arctanh(1 - 1e-7), -np.arctanh(1 - 1e-7), np.arctanh(0.5)])
    assert found.clipped.tolist() == [[0, 0], [0, 1]]


def test_edges_are_the_upper_triangle(rng):
    matrices = rng.normal(size=(3, 5, 5))
    matrices += matrices.transpose(0, 2, 1)
    rows = np.stack([matrix[np.triu_indices(5, 1)] for matrix in matrices])
    assert (statistics.edges(matrices) == rows).all()
    assert (statistics.edges(np.asfortranarray(matrices)) == rows).all()
    assert statistics.edges(matrices.astype(np.float32)) == near(rows)


def test_fingerprint_is_numpy_s_correlation(rng):
    first = rng.normal(size=(12, 40))
    second = first + 1.5 * rng.normal(size=(12, 40))
    found = statistics.fingerprint(first, second, permutations=499, seed=3)
    similarity = np.corrcoef(first, second)[:12, 12:]
    own = np.diag(similarity)
    assert found.similarity == near(similarity)
    assert found.rate_1_to_2 == np.mean(own >= similarity.max(axis=1))
    assert found.rate_2_to_1 == np.mean(own >= similarity.max(axis=0))
    others = (similarity.sum() - own.sum()) / (12 * 11)
    assert found.idiff == near(100 * (own.mean() - others))
    assert found.p_1_to_2 == (np.sum(found.null_1_to_2 >= found.rate_1_to_2) + 1) / 500


def test_icc_of_perfect_and_shifted_sessions(rng):
    data = rng.normal(size=(10, 4))
    same = statistics.icc([data, data])
    assert same.icc_1_1 == near(np.ones(4))
    shifted = statistics.icc(np.stack([data, data + 1]))
    assert shifted.icc_3_1 == near(np.ones(4))
    assert (shifted.icc_2_1 < 1).all()


# ---- one result


@pytest.mark.parametrize("threads", [0, 2, 5])
def test_the_same_bytes_on_any_number_of_threads(groups, threads, rng):
    data, design = groups
    distances = abs(data[:, :1] - data[:, 0])
    for test in (
        lambda count: statistics.edgewise_glm(data, design, [0, 1], permutations=500, threads=count),
        lambda count: statistics.nbs(data, design, [0, 1], 2.0, permutations=500, threads=count)[1:3],
        lambda count: statistics.distance_anova(
            distances, design, [0, 1], permutations=500, threads=count
        ),
    ):
        one, many = test(1), test(threads)
        for first, second in zip(one, many):
            assert np.asarray(first).tobytes() == np.asarray(second).tobytes()


def test_matrices_and_rows_of_edges_are_the_same(groups):
    data, design = groups
    matrices = np.zeros((30, 6, 6))
    for i, j, edge in zip(*np.triu_indices(6, 1), data.T):
        matrices[:, i, j] = matrices[:, j, i] = edge
    one = statistics.edgewise_glm(data, design, [0, 1], permutations=100)
    for form in (matrices, np.asfortranarray(matrices), matrices[::-1][::-1]):
        other = statistics.edgewise_glm(form, design, [0, 1], permutations=100)
        assert other.p_fwe.tobytes() == one.p_fwe.tobytes()


def test_seeds_and_blocks(groups):
    data, design = groups

    def p(**keywords):
        return statistics.edgewise_glm(data, design, [0, 1], permutations=200, **keywords).p_perm

    assert (p(seed=4) == p(seed=4)).all()
    assert (p(seed=4) != p(seed=5)).any()
    sites = ["a", "b"] * 15
    assert (p(blocks=sites) != p()).any()
    with pytest.raises(ValueError, match="same within every block"):
        p(blocks=design[:, 1].tolist())


def test_an_interrupt_ends_a_long_test():
    """It would run for hours."""
    script = """
import threading, os, signal, sys, time, numpy as np
from nodalis import statistics
main = threading.main_thread().ident
def is_computing():
    begun = time.process_time()
    while time.process_time() - begun < 0.5:
        if sys._current_frames()[main].f_code.co_name != "edgewise_glm":
            return False
        time.sleep(0.01)
    return True
def interrupt():
    while not is_computing():
        pass
    while not ended.is_set():
        os.kill(os.getpid(), signal.SIGINT)
        ended.wait(0.1)
done, ended = [], threading.Event()
design = np.column_stack([np.ones(40), np.arange(40) % 2])
data = np.random.default_rng(1).normal(size=(40, 4950))
thread = threading.Thread(target=interrupt)
try:
    thread.start()
    statistics.edgewise_glm(data, design, [0, 1], permutations=10**8)
except KeyboardInterrupt:
    done.append(True)
    ended.set()
signal.signal(signal.SIGINT, signal.SIG_IGN)
thread.join()
print("interrupted" if done else "not interrupted")
"""
    said = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True, timeout=200)
    assert said.stdout == "interrupted\n", said.stderr


# ---- designs


def test_designs():
    table = {
        "group": ["B", "A", None, "B", "A"],
        "age": [20.5, np.nan, 30, 40, 50],
        "site": np.array([10, 9, 9, 10, 10]),
    }
    found = statistics.design("C(site)", table)
    assert found.columns == ["(Intercept)", "site[9]"]  # in the order of bytes 10 comes before 9
    assert found.matrix[:, 1].tolist() == [0, 1, 1, 0, 0]
    assert found.categories == {"site": {"10": 3, "9": 2}}
    found = statistics.design("center(age)", table, other_columns=["group"])
    assert found.rows.tolist() == [0, 3, 4]
    assert found.missing == [(1, "age"), (2, "group")]
    assert found.matrix[:, 1] == near(np.array([20.5, 40, 50]) - 110.5 / 3)
    with pytest.raises(ValueError, match="height"):
        statistics.design("height", table)
    with pytest.raises(ValueError):
        statistics.design("age +", table)


def test_numbers_in_tables_keep_their_digits(rng):
    ages = rng.uniform(20, 80, size=9)
    assert (statistics.design("0 + age", {"age": ages}).matrix[:, 0] == ages).all()


# ---- what is refused


@pytest.mark.parametrize(
    ("keywords", "text"),
    [
        ({"data": np.zeros(3)}, r"data has shape \(3,\): expected subjects x edges, or subjects x"),
        ({"data": np.zeros((30, 2, 3))}, r"data has shape \(30, 2, 3\): expected subjects x edges"),
        (
            {"design": np.ones((29, 2))},
            r"design has shape \(29, 2\): expected 30 subjects x 2 columns, as the data and names",
        ),
        ({"design": np.ones(30)}, r"design has shape \(30,\): expected subjects x columns"),
        ({"columns": ["a"]}, r"design has shape \(30, 2\): expected 30 subjects x 1 columns"),
        (
            {"contrast": [1]},
            r"contrast has shape \(1,\): expected 2 weights, one per column of the design",
        ),
        ({"contrast": "c = x7"}, "names no column of the design; its columns are x0, x1"),
        ({"contrast": "x1"}, "no name; it is written NAME=column"),
        ({"design": np.ones((30, 2))}, "x1"),
        ({"sides": "left"}, 'sides is "left": expected one of each, both, greater, less'),
        ({"exchange": "all"}, 'exchange is "all": expected one of automatic, permutations, signs'),
        ({"permutations": -1}, "permutations is -1: expected 0 or more"),
        ({"given": np.zeros((3, 4))}, "permutations are of 4 subjects, the test has 30"),
        ({"given": np.full((1, 30), 0.5)}, "given holds what are no whole numbers"),
        ({"threads": -2}, "threads is -2: expected 0 or more"),
        ({"seed": -1}, "seed is -1: expected 0 or more"),
        ({"permutations": 2**70}, "permutations is 1180591620717411303424: expected 0 or more, "),
        ({"blocks": [1, 2]}, "30|blocks"),
    ],
)
def test_what_cannot_be_tested_is_told(groups, keywords, text):
    data, design = groups
    arguments = {"data": data, "design": design, "contrast": [0, 1], **keywords}
    with pytest.raises(ValueError, match=text):
        statistics.edgewise_glm(**arguments)


def test_other_errors_are_told(groups):
    data, design = groups
    with pytest.raises(TypeError, match="^permutations is 2.5: expected a whole number$"):
        statistics.edgewise_glm(data, design, [0, 1], permutations=2.5)
    bad = data.copy()
    bad[3, 2] = np.nan
    with pytest.raises(ValueError, match="3"):
        statistics.edgewise_glm(bad, design, [0, 1])
    with pytest.raises(ValueError, match="14 edges|upper triangle"):
        statistics.nbs(data[:, :14], design, [0, 1], 2.0)
    with pytest.raises(ValueError, match="data, subject 1: "):
        lopsided = np.zeros((30, 3, 3))
        lopsided[1, 0, 1] = 1
        statistics.edgewise_glm(lopsided, design, [0, 1])
    with pytest.raises(ValueError, match=r"matrices has shape \(30, 15\): expected subjects x nodes"):
        statistics.edges(data)
    with pytest.raises(ValueError, match="columns are given, but a design has its own"):
        named = statistics.design("a", {"a": range(30)})
        statistics.edgewise_glm(data, named, [0, 1], columns=["b", "c"])
    with pytest.raises(ValueError, match=r"distances has shape \(3, 3\): expected one value per edge"):
        statistics.qcfc(data, np.arange(30.0), distances=np.zeros((3, 3)))
    with pytest.raises(ValueError, match=r"covariates has shape \(30,\): expected subjects x columns"):
        statistics.qcfc(data, np.arange(30.0), covariates=np.zeros(30))
    with pytest.raises(ValueError, match=r"distances has shape \(30,\): expected subjects x subjects"):
        statistics.distance_anova(np.zeros(30), design, [0, 1])
    with pytest.raises(ValueError, match="session"):
        statistics.icc([data, data[:4]])
    with pytest.raises(ValueError, match="session 1 has 30 subjects"):
        statistics.fingerprint(data, data[:4])
    with pytest.raises(ValueError, match="correlations, subject 1: edge 0 is 1.5"):
        statistics.fisher_z([[0.5], [1.5]])
