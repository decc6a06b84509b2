# SPDX-License-Identifier: GPL-3.0-or-later
"""Tables of confounds, strategies, and cleaning by them."""

import csv
import json

import numpy as np
import pytest

from conftest import reference
from nodalis import signals

CASES = [
    ("fmriprep14_simple", "simple"),
    ("fmriprep14_simple_global_signal-basic", "simple-gsr"),
    ("fmriprep14_scrubbing", "scrubbing"),
    ("fmriprep14_compcor", "compcor"),
    ("fmriprep21_simple", "simple"),
    ("fmriprep21_simple_global_signal-basic", "simple-gsr"),
    ("fmriprep21_scrubbing", "scrubbing"),
    ("fmriprep21_compcor", "compcor"),
]


def path_of(name):
    ending = "regressors" if name.startswith("fmriprep14") else "timeseries"
    return reference("reference") / f"confounds/{name[:10]}_desc-confounds_{ending}.tsv"


@pytest.mark.parametrize(("name", "strategy"), CASES)
def test_strategies_take_what_the_usual_tool_takes(name, strategy):
    folder = reference("reference") / "confounds"
    wanted = json.loads((folder / "expected.json").read_text())[name]
    found = signals.select(path_of(name), strategy)
    assert found.names == wanted["columns"]
    kept = np.flatnonzero(~(found.non_steady | found.censored))
    assert kept.tolist() == wanted["sample_mask"]
    with (folder / f"{name}.csv").open(newline="", encoding="utf-8") as file:
        rows = list(csv.reader(file))
    if len(kept):
        values = np.array(rows[1:], float)[:, [rows[0].index(column) for column in found.names]]
        centred = found.values - found.values[kept].mean(axis=0)
        assert centred == pytest.approx(values, abs=1e-12 * abs(found.values).max())


@pytest.fixture
def pipeline(rng):
    """A table in memory, as a pipeline makes it."""
    volumes = 80
    names = [f"{kind}_{axis}" for kind in ("trans", "rot") for axis in "xyz"]
    columns = {}
    for name in [*names, "csf", "white_matter", "global_signal"]:
        values = rng.normal(size=volumes).cumsum() * (0.001 if name.startswith("rot") else 0.02)
        change = np.concatenate([[np.nan], np.diff(values)])
        columns[name] = values
        columns[f"{name}_derivative1"] = change
        columns[f"{name}_power2"] = values**2
        columns[f"{name}_derivative1_power2"] = change**2
    columns["cosine00"] = signals.drift(volumes, 2, 0.008)[:, 0]
    motion = np.column_stack([columns[name] for name in names])
    columns["framewise_displacement"] = signals.framewise_displacement(motion)
    columns["framewise_displacement"][[20, 40]] = 3
    columns["non_steady_state_outlier00"] = np.eye(volumes)[0]
    return columns


class Frame:
    """What is used of a data frame."""

    def __init__(self, columns):
        self._columns = columns

    def keys(self):
        return self._columns.keys()

    def __getitem__(self, name):
        return self._columns[name]


def write(columns, path):
    rows = zip(*columns.values())
    cells = [["n/a" if np.isnan(value) else repr(float(value)) for value in row] for row in rows]
    path.write_text("\n".join("\t".join(row) for row in [list(columns), *cells]) + "\n")
    return path


def test_a_path_a_table_and_a_mapping_are_the_same(pipeline, tmp_path):
    path = write(pipeline, tmp_path / "confounds.tsv")
    records = np.rec.fromarrays(list(pipeline.values()), names=list(pipeline))
    expected = signals.select(path, "36P", fd_threshold=2.5)
    assert len(expected.names) == 37
    assert np.flatnonzero(expected.censored).tolist() == [20, 40]
    assert np.flatnonzero(expected.non_steady).tolist() == [0]
    for form in (str(path), signals.read_confounds(path), pipeline, records, Frame(pipeline)):
        found = signals.select(form, "36P", fd_threshold=2.5)
        assert found.names == expected.names
        assert found.values.tobytes() == expected.values.tobytes()
        assert (found.censored == expected.censored).all()


def test_cleaning_by_a_strategy(pipeline, rng):
    series = rng.normal(size=(80, 5))
    selection = signals.select(pipeline, "36P", fd_threshold=2.5, min_segment=0)
    cleaned = signals.clean(series, selection, tr=2)
    kept = np.setdiff1d(np.arange(80), [0, 20, 40])
    assert cleaned.rows.tolist() == kept.tolist()
    design = np.column_stack([np.ones(80), np.arange(80), selection.values])[kept]
    fitted = design @ np.linalg.lstsq(design, series[kept], rcond=None)[0]
    assert cleaned.series == pytest.approx(series[kept] - fitted, abs=1e-6)
    assert (cleaned.ledger.non_steady, cleaned.ledger.censored) == (1, 2)
    fd = np.asarray(pipeline["framewise_displacement"])
    assert cleaned.ledger.mean_fd_before == pytest.approx(fd[1:].mean())
    assert cleaned.ledger.mean_fd_after == pytest.approx(fd[kept].mean())


def test_volumes_named_by_hand_join_those_of_a_selection(pipeline, rng):
    series, by_hand = rng.normal(size=(80, 5)), np.eye(80)[50]
    selection = signals.select(pipeline, "motion6", fd_threshold=2.5, min_segment=0)
    joined = signals.clean(series, selection, tr=2, censored=by_hand)
    assert np.setdiff1d(np.arange(80), joined.rows).tolist() == [0, 20, 40, 50]
    asked = signals.select(pipeline, "motion6", fd_threshold=2.5, min_segment=0, censor=by_hand)
    assert signals.clean(series, asked, tr=2).series.tobytes() == joined.series.tobytes()
    with pytest.raises(ValueError, match=r"flags of volumes have shape \(3,\): expected \(80,\)"):
        signals.clean(series, selection, tr=2, censored=[0, 0, 1])


def test_a_selection_is_for_one_order(pipeline, rng):
    series = rng.normal(size=(80, 2))
    selection = signals.select(pipeline, "24P", order="butterworth")
    assert "cosine00" not in selection.names
    with pytest.raises(ValueError, match="order is joint, the confounds were selected for butterw"):
        signals.clean(series, selection, tr=2)
    with pytest.raises(ValueError, match="names are given, but a selection has its own"):
        signals.clean(series, selection, tr=2, order="butterworth", low_pass=0.1, names=["a"])


def test_none_regresses_nothing(pipeline, rng):
    series = rng.normal(size=(80, 2)) + np.arange(80)[:, None]
    cleaned = signals.clean(series, signals.select(pipeline, "none", dummy_scans=0), tr=2)
    assert cleaned.series == pytest.approx(series - series.mean(axis=0))


def test_components_need_the_json(pipeline, tmp_path, rng):
    for number in range(3):
        pipeline[f"a_comp_cor_{number:02}"] = rng.normal(size=80)
    path = write(pipeline, tmp_path / "run_confounds.tsv")
    with pytest.raises(ValueError, match="JSON"):
        signals.select(path, "compcor")
    facts = {
        f"a_comp_cor_{number:02}": {"Method": "aCompCor", "Mask": "combined", "Retained": number < 2}
        for number in range(3)
    }
    path.with_suffix(".json").write_text(json.dumps({**facts, "csf": {"Description": "mean"}}))
    found = signals.select(path, "compcor")
    assert [name for name in found.names if "comp" in name] == ["a_comp_cor_00", "a_comp_cor_01"]
    assert signals.read_confounds(path).components[2] == ("a_comp_cor_02", "aCompCor", "combined", False)
    limited = signals.select(path, "compcor", components=1)
    assert len(limited.names) == len(found.names) - 1


def test_motion_parameters_without_a_header(tmp_path, rng):
    motion = rng.normal(size=(40, 6)).cumsum(axis=0) * 0.01
    path = tmp_path / "motion.par"
    path.write_text("# from elsewhere\n" + "\n".join("  ".join(map(repr, row)) for row in motion.tolist()))
    table = signals.read_confounds(path)
    assert table.names == ["p1", "p2", "p3", "p4", "p5", "p6"]
    assert (table.values == motion).all()
    assert len(signals.select(path, "motion24").names) == 24
    assert "FD is not known" in signals.select(path, "motion6").notes[0]
    with pytest.raises(ValueError, match="fsl, spm or afni"):
        signals.select(path, "motion6", fd_threshold=0.5)
    found = signals.select(path, "motion6", fd_threshold=0.5, motion_order="fsl")
    fd = signals.framewise_displacement(motion, motion_order="fsl")
    assert found.fd[1:].tobytes() == fd[1:].tobytes()


def test_quoted_cells_and_comments_above_the_names(tmp_path):
    path = tmp_path / "t.tsv"
    path.write_text('# made by hand\n"csf"\twhite matter\n\n 1 \t"n/a"\n-2e1\t3\n')
    table = signals.read_confounds(path)
    assert table.names == ["csf", "white matter"]
    assert table.values.tolist()[1] == [-20, 3]
    assert np.isnan(table.values[0, 1])


@pytest.mark.parametrize(
    ("text", "said"),
    [
        ("", "no table is in it"),
        ("# nothing\n", "no table is in it"),
        ("a\tb\n1\n", "line 2: 1 cells: expected 2, one per column"),
        ("a\tb\n1\tx\n", 'line 2, b: "x": expected a number or "n/a"'),
        ("a\n1_0\n", 'line 2, a: "1_0": expected a number or "n/a"'),
        ("a\ninf\n", 'line 2, a: "inf": expected a number or "n/a"'),
        ("1 2\n3\n", "line 2: 1 numbers: expected 2, as before"),
        ("1 2\n3 n/a\n", 'line 2, column 2: "n/a": expected a number'),
    ],
)
def test_what_is_no_table_is_told(tmp_path, text, said):
    path = tmp_path / "t.tsv"
    path.write_text(text)
    with pytest.raises(ValueError) as error:
        signals.read_confounds(path)
    assert said in str(error.value) and str(path) in str(error.value)


def test_what_is_no_json_is_told(tmp_path):
    path = tmp_path / "t.tsv"
    path.write_text("a\n1\n")
    for text in ("[1]", "{"):
        path.with_suffix(".json").write_text(text)
        with pytest.raises(ValueError, match="expected a JSON object"):
            signals.read_confounds(path)


def test_what_cannot_be_selected_is_told(pipeline):
    with pytest.raises(ValueError, match='there is no strategy "37P": expected one of none, simple'):
        signals.select(pipeline, "37P")
    with pytest.raises(ValueError, match="lacks: std_dvars"):
        signals.select(pipeline, "36P", dvars_threshold=1.5)
    with pytest.raises(ValueError, match="confounds is ndarray: expected a path, a table"):
        signals.select(np.zeros((3, 3)), "36P")
    with pytest.raises(ValueError, match=r"column b has shape \(1,\): expected \(2,\), as the first"):
        signals.select({"a": [1, 2], "b": [1]}, "none")
    pipeline["csf"][7] = np.nan
    with pytest.raises(ValueError, match="csf.*7"):
        signals.select(pipeline, "36P")


def test_the_strategies_are_all_there():
    names = [strategy.name for strategy in signals.strategies()]
    assert names[0] == "none" and names[-1] == "columns:a,b,c*" and "36P" in names
    assert len(names) == len(set(names)) == 12
