# SPDX-License-Identifier: GPL-3.0-or-later
"""Cleaning: the reference numbers of other programs, and scipy."""

import gzip
import json
import struct

import numpy as np
import pytest

from conftest import reference, tool
from nodalis import signals

TR = 1.89


def table(path):
    return np.loadtxt(reference("reference") / path, delimiter=",", ndmin=2)


def near(expected, tolerance=1e-9):
    return pytest.approx(np.asarray(expected), rel=tolerance, abs=tolerance)


@pytest.fixture
def run():
    return table("clean/input_signals.csv"), table("clean/input_confounds.csv")


def censored(name):
    facts = json.loads((reference("reference") / "clean/reference.json").read_text())["_meta"]
    flags = np.zeros(250, bool)
    flags[facts[f"{name}_censored"]] = True
    return flags


# ---- the reference folder


@pytest.mark.parametrize("dtype", [np.float64, np.float32])
def test_order_cosine(run, dtype):
    cleaned = signals.clean(*run, tr=TR, order="cosine", high_pass=0.008, standardize="zscore")
    assert cleaned.series == near(table("clean/clean_cosine008_conf_z.csv"))
    again = signals.clean(
        run[0].astype(dtype), run[1].astype(dtype), tr=TR, order="cosine", standardize="zscore"
    )
    assert again.series == near(cleaned.series, 1e-9 if dtype == np.float64 else 1e-3)


def test_order_joint_is_cosine_without_censoring(run):
    cleaned = signals.clean(*run, tr=TR, high_pass=0.008, standardize="zscore")
    assert cleaned.series == near(table("clean/clean_cosine008_conf_z.csv"))
    assert cleaned.ledger.rank == 2 + 7 + 6
    assert cleaned.ledger.degrees == 250 - 15


@pytest.mark.parametrize(
    ("left_out", "file"),
    [
        (None, "clean_butter_conf_z"),
        ("inner", "clean_butter_conf_z_scrub_inner"),
        ("edge", "clean_butter_conf_z_scrub_edge_fixed"),
    ],
)
def test_order_butterworth(run, left_out, file):
    flags = censored(left_out) if left_out else None
    cleaned = signals.clean(
        *run,
        tr=TR,
        order="butterworth",
        high_pass=0.01,
        low_pass=0.08,
        standardize="zscore",
        censored=flags,
    )
    assert cleaned.series == near(table(f"clean/{file}.csv"))
    if left_out:
        assert cleaned.rows.tolist() == np.flatnonzero(~flags).tolist()
        assert cleaned.ledger.about


def test_order_bandpass_pad(run):
    wanted = table("clean/xcpd_nocensor.csv")
    cleaned = signals.clean(*run, tr=TR, order="bandpass-pad")
    assert cleaned.series == pytest.approx(wanted, abs=1e-9 * abs(wanted).max())


def test_drift():
    wanted = table("clean/cosine_drift_hp0.008.csv")
    assert signals.drift(250, TR, 0.008) == near(wanted[:, :7], 1e-14)  # without the constant
    both = signals.drift(250, TR, 0.008, low_pass=0.2)
    assert both[:, :7].tobytes() == signals.drift(250, TR, 0.008).tobytes()
    assert np.allclose(both.T @ both, np.eye(both.shape[1]), atol=1e-12)


def test_butterworth(run):
    found = signals.butterworth(run[0], TR, high_pass=0.01, low_pass=0.08)
    assert found == near(table("clean/butterworth5_band.csv"), 1e-11)


def test_framewise_displacement():
    folder = reference("reference") / "motion"
    motion = np.loadtxt(folder / "fsl_mcflirt_movpar.txt")
    found = signals.framewise_displacement(motion, motion_order="fsl")
    assert np.isnan(found[0])
    assert found[1:] == near(np.loadtxt(folder / "fsl_motion_outliers_fd.txt"), 1e-6)
    in_spm = np.hstack([motion[:, 3:], motion[:, :3]])
    in_afni = np.hstack([np.degrees(motion[:, :3]), motion[:, 3:]])
    assert signals.framewise_displacement(in_spm)[1:] == near(found[1:])
    assert signals.framewise_displacement(in_afni, motion_order="afni")[1:] == near(found[1:])


def image(path):
    """Volumes x voxels of a small NIfTI-1 file."""
    data = gzip.decompress(path.read_bytes())
    sizes = struct.unpack("<8h", data[40:56])
    kind = {2: "<u1", 4: "<i2", 16: "<f4", 64: "<f8"}[struct.unpack("<h", data[70:72])[0]]
    offset, slope, intercept = struct.unpack("<3f", data[108:120])
    values = np.frombuffer(data, kind, offset=int(offset)).astype(float)
    values = values * slope + intercept if slope else values
    return values.reshape(sizes[4], -1)


def test_dvars():
    folder = reference("reference") / "motion"
    run = image(folder / "ds003_sub-01_mc.nii.gz")
    inside = image(folder / "ds003_sub-01_mc_brainmask.nii.gz")[0] > 0
    wanted = np.loadtxt(folder / "ds003_sub-01_mc.DVARS")
    found = signals.dvars(run[:, inside])
    assert np.isnan(found.plain[0]) and np.isnan(found.standardised[0])
    assert found.plain[1:] == near(wanted[:, 1], 1e-5)
    # Autocorrelation and spread are estimated otherwise there.
    assert found.standardised[1:] == near(wanted[:, 0], 6e-3)


# ---- scipy


@pytest.mark.parametrize(
    ("edges", "kind", "scipy_edges"),
    [
        ({"low_pass": 0.1}, "lowpass", 0.1),
        ({"high_pass": 0.01}, "highpass", 0.01),
        ({"high_pass": 0.01, "low_pass": 0.1}, "bandpass", [0.01, 0.1]),
    ],
)
@pytest.mark.parametrize("order", [1, 2, 5])
def test_scipy_filters(rng, edges, kind, scipy_edges, order):
    scipy_signal = tool("scipy.signal")
    series = rng.normal(size=(300, 4)).cumsum(axis=0)
    sections = scipy_signal.butter(order, scipy_edges, kind, fs=1 / 2.0, output="sos")
    wanted = scipy_signal.sosfiltfilt(sections, series, axis=0)
    assert signals.butterworth(series, 2.0, order=order, **edges) == near(wanted, 1e-6)
    ours = signals.butterworth_sections(2.0, order=order, **edges)
    at = np.linspace(0.001, 0.2, 50)
    _, gain = scipy_signal.sosfreqz(ours, at, fs=0.5)
    _, their_gain = scipy_signal.sosfreqz(sections, at, fs=0.5)
    assert abs(gain) == near(abs(their_gain), 1e-6)


def test_scipy_detrend(rng):
    scipy_signal = tool("scipy.signal")
    series = rng.normal(size=(100, 3)).cumsum(axis=0)
    assert signals.detrended(series) == near(scipy_signal.detrend(series, axis=0), 1e-6)


def test_numpy_least_squares(rng):
    """Order joint is one fit: the residuals of numpy's least squares on the kept volumes."""
    series, confounds = rng.normal(size=(120, 5)), rng.normal(size=(120, 3))
    left_out = rng.uniform(size=120) < 0.2
    cleaned = signals.clean(series, confounds, tr=2, high_pass=0.01, censored=left_out)
    t = np.arange(120.0)
    design = np.column_stack([np.ones(120), t, signals.drift(120, 2, 0.01), confounds])[~left_out]
    fitted = design @ np.linalg.lstsq(design, series[~left_out], rcond=None)[0]
    assert cleaned.series == near(series[~left_out] - fitted, 1e-6)
    assert cleaned.ledger == signals.Ledger(
        volumes=120,
        non_steady=0,
        censored=left_out.sum(),
        kept=120 - left_out.sum(),
        rank=design.shape[1],
        degrees=120 - left_out.sum() - design.shape[1],
        about=False,
        seconds=2.0 * (120 - left_out.sum()),
        mean_fd_before=pytest.approx(np.nan, nan_ok=True),
        mean_fd_after=pytest.approx(np.nan, nan_ok=True),
    )
    assert cleaned.means == near(series[~left_out].mean(axis=0))
    assert cleaned.design.shape == (120 - left_out.sum(), len(cleaned.names))


# ---- what is taken and what is refused


def test_any_form_of_series(rng):
    series = rng.normal(size=(60, 4))
    wide = np.full((120, 12), np.nan)
    wide[::2, ::3] = series
    wide.setflags(write=False)
    expected = signals.clean(series, tr=2).series
    for form in (np.asfortranarray(series), wide[::2, ::3], series[::-1][::-1], series.tolist()):
        assert signals.clean(form, tr=2).series.tobytes() == expected.tobytes()


def test_standardize(rng):
    series = 100 + rng.normal(size=(60, 3))
    z = signals.clean(series, tr=2, standardize="zscore").series
    assert z.std(axis=0, ddof=1) == near(np.ones(3))
    percent = signals.clean(series - [0, 0, series[:, 2].mean()], tr=2, standardize="psc")
    plain = signals.clean(series, tr=2).series
    assert percent.series[:, 0] == near(100 * plain[:, 0] / series[:, 0].mean())
    without = np.column_stack([series[:, 0], np.zeros(60)])
    assert signals.clean(without, tr=2, standardize="psc").without_mean.tolist() == [1]


@pytest.mark.parametrize(
    ("keywords", "text"),
    [
        ({"series": np.zeros(10)}, r"series has shape \(10,\): expected volumes x series"),
        (
            {"confounds": np.zeros((9, 2))},
            r"confounds has shape \(9, 2\): expected 30 volumes x regressors, as many as the series",
        ),
        ({"confounds": np.zeros(30)}, r"confounds has shape \(30,\): expected 30 volumes"),
        (
            {"censored": np.zeros(3, bool)},
            r"censored has shape \(3,\): expected 30 values, one per volume",
        ),
        ({"censored": [2] * 30}, "censored holds other values than 0 and 1: expected one flag per"),
        ({"order": "both"}, 'order is "both": expected one of joint, cosine, butterworth, bandpass'),
        ({"standardize": "sd"}, 'standardize is "sd": expected one of none, zscore, psc'),
        ({"tr": 0}, "repetition time|tr"),
        ({"high_pass": -1}, "-1"),
        ({"censored": [1] * 28 + [0] * 2}, "2"),
    ],
)
def test_what_cannot_be_cleaned_is_told(rng, keywords, text):
    arguments = {"series": rng.normal(size=(30, 2)), "tr": 2.0, **keywords}
    with pytest.raises(ValueError, match=text):
        signals.clean(**arguments)


def test_other_errors_are_told(rng):
    series = rng.normal(size=(30, 2))
    with pytest.raises(ValueError, match=r"motion has shape \(30, 2\): expected volumes x 6"):
        signals.framewise_displacement(series)
    with pytest.raises(ValueError, match='motion_order is "x": expected one of fsl, spm, afni'):
        signals.framewise_displacement(np.zeros((30, 6)), motion_order="x")
    with pytest.raises(ValueError, match="tr is 0: expected more than 0"):
        signals.drift(30, 0, 0.01)
    with pytest.raises(ValueError, match="negative"):
        signals.drift(30, 2, -0.01)
    with pytest.raises(TypeError, match="^tr is '2': expected a number$"):
        signals.clean(series, tr="2")
    with pytest.raises(TypeError, match="^high_pass is a list: expected a number$"):
        signals.clean(series, tr=2, high_pass=[0.01])
    with pytest.raises(TypeError, match="^order is 5: expected a text$"):
        signals.clean(series, tr=2, order=5)
    with pytest.raises(ValueError, match='extension is "even": expected one of odd, constant'):
        signals.butterworth(series, 2, low_pass=0.1, extension="even")
    with pytest.raises(ValueError, match="padding is -1: expected 0 or more"):
        signals.butterworth(series, 2, low_pass=0.1, padding=-1)
    series[4, 1] = np.nan
    for function in (
        lambda: signals.clean(series, tr=2),
        lambda: signals.detrended(series),
        lambda: signals.dvars(series),
        lambda: signals.butterworth(series, 2, low_pass=0.1),
    ):
        with pytest.raises(ValueError, match=r"1, volume 4 \(both from 0\) is n/a: expected a finite"):
            function()
