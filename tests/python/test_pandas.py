# SPDX-License-Identifier: GPL-3.0-or-later
"""Data frames, where arrays and tables are expected."""

import numpy as np
import pytest

import nodalis
from conftest import tool
from nodalis import signals, statistics


@pytest.fixture
def pandas():
    return tool("pandas")


def test_a_correlation_matrix(pandas, rng):
    frame = pandas.DataFrame(rng.normal(size=(50, 4)), columns=list("abcd")).corr()
    assert (nodalis.strength(frame) == nodalis.strength(frame.to_numpy())).all()
    with pytest.raises(ValueError, match=r"matrix has shape \(3, 4\): expected n x n"):
        nodalis.strength(frame[1:])


def test_a_table_of_confounds(pandas, tmp_path):
    path = tmp_path / "confounds.tsv"
    path.write_text(
        "csf\tcsf_derivative1\tframewise_displacement\n1\tn/a\tn/a\n2\t1\t0.9\n4\t2\t0.1\n"
    )
    frame = pandas.read_csv(path, sep="\t")
    keywords = {"fd_threshold": 0.5, "min_segment": 0}
    from_frame = signals.select(frame, "columns:csf*", **keywords)
    from_path = signals.select(path, "columns:csf*", **keywords)
    assert from_frame.names == from_path.names == ["csf", "csf_derivative1"]
    assert from_frame.values.tobytes() == from_path.values.tobytes()
    assert from_frame.censored.tolist() == [False, True, False]
    frame.columns = ["csf", "csf", "framewise_displacement"]
    with pytest.raises(ValueError, match=r"column csf has shape \(3, 2\)"):
        signals.select(frame, "columns:csf")


def test_a_table_of_participants(pandas):
    frame = pandas.DataFrame(
        {
            "group": pandas.Categorical(["B", "A", "A", "B", "A", "B"]),
            "age": pandas.array([20, 30, None, 40, 50, 60], dtype="Int64"),
            "score": [1.5, 2.5, 3.5, np.nan, 4.5, 5.5],
            "site": ["x", "y", "x", "y", None, "x"],
        },
        index=[9, 8, 7, 6, 5, 4],
    )
    design = statistics.design("group + age + score", frame)
    assert design.columns == ["(Intercept)", "group[B]", "age", "score"]
    assert design.matrix.tolist() == [
        [1, 1, 20, 1.5],
        [1, 0, 30, 2.5],
        [1, 0, 50, 4.5],
        [1, 1, 60, 5.5],
    ]
    assert design.rows.tolist() == [0, 1, 4, 5]
    assert design.missing == [(2, "age"), (3, "score")]
    assert statistics.design("1", frame, other_columns=["site"]).missing == [(4, "site")]


def test_a_design_and_labels(pandas, rng):
    data = rng.normal(size=(12, 3))
    frame = pandas.DataFrame({"one": np.ones(12), "x": rng.normal(size=12)})
    sites = pandas.Series(["a", "b"] * 6)
    found = statistics.edgewise_glm(data, frame, "slope = x", blocks=sites, permutations=50)
    same = statistics.edgewise_glm(
        data, frame.to_numpy(), [0, 1], blocks=sites.to_list(), permutations=50
    )
    assert found.p_perm.tobytes() == same.p_perm.tobytes()


def test_confounds_with_names(pandas, rng):
    series = rng.normal(size=(60, 2))
    confounds = pandas.DataFrame({"csf": rng.normal(size=60), "cosine00": signals.drift(60, 2, 0.01)[:, 0]})
    cleaned = signals.clean(series, confounds, tr=2)
    assert {"csf", "cosine00"} < set(cleaned.names)
    replaced = signals.clean(series, confounds, tr=2, high_pass=0.01)
    assert "cosine00" not in replaced.names  # a drift of the table, left out for the own one
    unnamed = signals.clean(series, confounds.to_numpy(), tr=2)
    assert {"x0", "x1"} < set(unnamed.names)
