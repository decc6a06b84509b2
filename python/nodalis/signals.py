# SPDX-License-Identifier: GPL-3.0-or-later
"""Cleaning of time series.

Series are volumes x series, in any unit; all is computed in double precision. Volumes are counted from
0. docs/cleaning.md of the project has all formulas, and where other tools give other numbers.
"""

from typing import NamedTuple

import numpy as np

from . import _nodalis
from ._arguments import column_names, optional, real, whole, word
from .confounds import Component, ConfoundsTable, as_table, read_confounds

__all__ = [
    "Cleaned",
    "Component",
    "ConfoundsTable",
    "Dvars",
    "Ledger",
    "Selection",
    "Strategy",
    "butterworth",
    "butterworth_sections",
    "clean",
    "detrended",
    "drift",
    "dvars",
    "dvars_scale",
    "framewise_displacement",
    "read_confounds",
    "select",
    "strategies",
]

_core = _nodalis.signals


class Ledger(NamedTuple):
    """What cleaning cost a run: volumes = non_steady + censored + kept.

    Attributes
    ----------
    volumes, non_steady, censored, kept : int
        Volumes; censored ones are those not already non-steady.
    rank : int
        Of the design, with intercept and trend.
    degrees : float
        Degrees of freedom that are left, kept - rank; with a band-pass filter the lesser of that and
        2 tr kept (high - low) - regressors.
    about : bool
        Whether there are only about so many, after a filter.
    seconds : float
        What is kept of the run.
    mean_fd_before, mean_fd_after : float
        In mm, of all volumes but row 0 and non-steady ones, and of the kept ones; NaN if unknown.
    """

    volumes: int
    non_steady: int
    censored: int
    kept: int
    rank: int
    degrees: float
    about: bool
    seconds: float
    mean_fd_before: float
    mean_fd_after: float


class Cleaned(NamedTuple):
    """Cleaned series with what was done to them.

    Attributes
    ----------
    series : ndarray of float64, kept volumes x series
        In the unit of the series, or as standardised.
    rows : ndarray of int
        The kept volumes' numbers in the run.
    means : ndarray of float64
        Of each series over the kept volumes, before cleaning.
    without_mean : ndarray of int
        Series that psc made 0, having no mean to relate to.
    names : list of str
        Of the columns of the design.
    design : ndarray of float64, kept volumes x names
        What was fitted, as scaled for the fit.
    ledger : Ledger
        Volumes and degrees of freedom.
    notes : list of str
        Sentences about what was left out or changed.
    """

    series: "numpy.ndarray"
    rows: "numpy.ndarray"
    means: "numpy.ndarray"
    without_mean: "numpy.ndarray"
    names: list
    design: "numpy.ndarray"
    ledger: Ledger
    notes: list


class Dvars(NamedTuple):
    """How much the image changes from a volume to the next.

    Attributes
    ----------
    plain : ndarray of float64, volumes
        In the unit of the data; NaN in row 0.
    standardised : ndarray of float64, volumes
        Without a unit, near 1 without artefacts; NaN in row 0.
    """

    plain: "numpy.ndarray"
    standardised: "numpy.ndarray"


class Strategy(NamedTuple):
    """A denoising strategy, in words.

    Attributes
    ----------
    name : str
        As `select` takes it.
    regressors, censoring : str
        What it regresses out, and what it leaves out.
    """

    name: str
    regressors: str
    censoring: str


class Selection(NamedTuple):
    """What a strategy takes of a table of confounds; `clean` takes it as it is.

    Attributes
    ----------
    names : list of str
        Columns in the order of their names' bytes.
    values : ndarray of float64, volumes x names
        n/a in row 0 has taken the value of row 1.
    filter_only : bool
        Nothing is regressed out, not even a trend (the strategy none).
    non_steady, censored : ndarray of bool, volumes
        Volumes to leave out.
    fd : ndarray of float64, volumes
        Framewise displacement in mm; empty if it is not known.
    fd_threshold, dvars_threshold : float
        In force; 0 is off. In mm, and without a unit.
    min_segment : int
        In force, in volumes.
    order : str
        The order that it was made for.
    notes : list of str
        Sentences for people.
    """

    names: list
    values: "numpy.ndarray"
    filter_only: bool
    non_steady: "numpy.ndarray"
    censored: "numpy.ndarray"
    fd: "numpy.ndarray"
    fd_threshold: float
    dvars_threshold: float
    min_segment: int
    order: str
    notes: list


def clean(
    series,
    confounds=None,
    *,
    tr,
    names=None,
    non_steady=None,
    censored=None,
    order="joint",
    high_pass=None,
    low_pass=None,
    detrend=True,
    standardize="none",
):
    """Cleans the series of a run: filter, censoring, regression, standardisation.

    The orders of the steps:

    - joint: one least-squares fit on the kept volumes of [intercept, linear trend, drift, confounds,
      and with edges the discrete cosines outside the band]. Nothing is interpolated.

          residual = x - Q Q'x,  Q an orthonormal basis of the design's columns

    - cosine: cosines of all volumes join the confounds (at 0.008 Hz if there are neither cosines nor a
      high_pass), rows leave, linear detrend, regression without intercept.
    - butterworth: spline over volumes left out, linear detrend, Butterworth filter of order 5, rows
      leave, regression as cosine.
    - bandpass-pad: the same of order 2, 0.01 to 0.08 Hz unless given, constant padding, plain least
      squares.

    Parameters
    ----------
    series : array, volumes x series
        All volumes of the run, finite; float32 and float64.
    confounds : Selection, array or data frame, volumes x regressors
        What `select` made of a table, or regressors in any unit; None for none.
    tr : float
        Repetition time in seconds.
    names : list of str
        Of the regressors of an array; x0, x1, ... without. "cosine" with digits behind it is a drift.
    non_steady, censored : array of bool, volumes
        Volumes to leave out, beside those of a selection.
    order : str
        joint, cosine, butterworth or bandpass-pad.
    high_pass, low_pass : float
        Edges in Hz; None is the order's default, 0 is none.
    detrend : bool
        Linear trend; where none is taken, joint still takes the mean.
    standardize : str
        none; zscore, (x - mean)/sd with n - 1; psc, 100 (x - mean)/|m| with m the mean before cleaning.

    Returns
    -------
    Cleaned

    Raises
    ------
    ValueError
        If shapes differ, something is not finite, an edge is out of range, a selection was made for
        another order, or fewer than 3 degrees of freedom are left.

    References
    ----------
    Lindquist et al. 2019, Hum Brain Mapp 40:2358, doi:10.1002/hbm.24528 (why one fit).

    Examples
    --------
    >>> t = np.arange(100.0)
    >>> motion = np.sin(t)
    >>> series = np.column_stack([5 + 0.1 * t + motion, np.cos(t / 3)])
    >>> cleaned = nodalis.signals.clean(series, motion[:, None], tr=2)
    >>> bool(abs(cleaned.series[:, 0]).max() < 1e-12)  # nothing else was in it
    True
    >>> cleaned.ledger.rank, cleaned.ledger.degrees
    (3, 97.0)
    """
    filter_only, fd = False, None
    if isinstance(confounds, Selection):
        if names is not None:
            raise ValueError("names are given, but a selection has its own")
        if confounds.order != order:
            raise ValueError(
                f"order is {order}, the confounds were selected for {confounds.order}: "
                "expected the same in both"
            )
        non_steady = _either(confounds.non_steady, non_steady)
        censored = _either(confounds.censored, censored)
        filter_only, fd, names = confounds.filter_only, confounds.fd, confounds.names
        confounds = confounds.values
    elif confounds is not None and names is None:
        names = column_names(confounds)
    found = _core.clean(
        series,
        list(names or []),
        confounds,
        filter_only,
        non_steady,
        censored,
        fd if fd is not None and len(fd) else None,
        real("tr", tr),
        word("order", order),
        optional(real, "high_pass", high_pass),
        optional(real, "low_pass", low_pass),
        bool(detrend),
        word("standardize", standardize),
    )
    return Cleaned(**{**found, "ledger": Ledger(**found["ledger"])})


def _either(flags, others):
    if others is None:
        return flags
    others = np.asarray(others)
    if others.shape != flags.shape:
        raise ValueError(f"flags of volumes have shape {others.shape}: expected {flags.shape}")
    return np.maximum(flags, others)


def strategies():
    """The denoising strategies, in words.

    Returns
    -------
    list of Strategy

    References
    ----------
    Friston et al. 1996, doi:10.1002/mrm.1910350312; Behzadi et al. 2007,
    doi:10.1016/j.neuroimage.2007.04.042; Satterthwaite et al. 2013,
    doi:10.1016/j.neuroimage.2012.08.052; Wang et al. 2024, doi:10.1371/journal.pcbi.1011942.

    Examples
    --------
    >>> for strategy in nodalis.signals.strategies()[:3]:
    ...     print(strategy.name, "-", strategy.regressors)
    none - nothing, not even a trend
    simple - cosines, motion 24, csf, white_matter
    simple-gsr - cosines, motion 24, csf, white_matter, global_signal
    """
    return [Strategy(*words) for words in _core.strategies()]


def select(
    confounds,
    strategy,
    *,
    order="joint",
    fd_threshold=None,
    dvars_threshold=None,
    min_segment=None,
    dummy_scans=None,
    components=None,
    censor=None,
    motion_order=None,
):
    """Applies a strategy to a table of confounds.

    Motion 24 is [R, R', R^2, R'^2] of the six parameters R and their backward differences R'. A volume
    is an outlier if FD > fd_threshold or std_dvars > dvars_threshold, strictly; if there is one, runs
    of fewer than min_segment volumes between outliers go too. Non-steady volumes, and those of
    `censor`, join afterwards and shorten no run.

    Parameters
    ----------
    confounds : path, ConfoundsTable, mapping or data frame
        One row per volume, translations in mm and rotations in rad. A mapping is of names to columns,
        with NaN where a value is missing; only a path has the JSON that component strategies need.
    strategy : str
        A name of `strategies`, or "columns:a,b,c*"; a * at the end stands for any ending.
    order : str
        As it will be given to `clean`: some strategies take cosines in some orders only.
    fd_threshold, dvars_threshold : float
        In mm, and without a unit; 0 is off, None is the strategy's.
    min_segment : int
        In volumes; None is the strategy's.
    dummy_scans : int
        The first so many volumes are non-steady; None: those that the table marks.
    components : int
        At most so many, of each mask.
    censor : array of bool, volumes
        Volumes to leave out besides.
    motion_order : str
        fsl, spm or afni: of the columns of a table without a header.

    Returns
    -------
    Selection

    Raises
    ------
    ValueError
        If the name is unknown, columns are missing (naming them all), or a value is.

    References
    ----------
    Friston et al. 1996, Magn Reson Med 35:346, doi:10.1002/mrm.1910350312; Power et al. 2014,
    NeuroImage 84:320, doi:10.1016/j.neuroimage.2013.08.048 (segments).

    Examples
    --------
    >>> table = {"csf": [1.0, 2, 4, 3], "framewise_displacement": [np.nan, 0.1, 0.9, 0.1]}
    >>> selection = nodalis.signals.select(table, "columns:csf", fd_threshold=0.5, min_segment=0)
    >>> selection.names, selection.censored
    (['csf'], array([False, False,  True, False]))
    """
    table = as_table(confounds)
    found = _core.select(
        table.names,
        table.values,
        table.components,
        word("strategy", strategy),
        word("order", order),
        optional(real, "fd_threshold", fd_threshold),
        optional(real, "dvars_threshold", dvars_threshold),
        optional(whole, "min_segment", min_segment),
        optional(whole, "dummy_scans", dummy_scans),
        optional(whole, "components", components),
        censor,
        optional(word, "motion_order", motion_order),
    )
    return Selection(order=order, **found)


def drift(volumes, tr, high_pass, low_pass=None):
    """Discrete cosines of slow drift.

        c_k(t) = sqrt(2/n) cos(pi/n (t + 0.5) k),  k = 1 .. min(n - 1, floor(2 n high_pass tr))

    Over all n volumes they have norm 1, sum 0 and are orthogonal. Cosine k has the frequency
    k/(2 n tr) Hz.

    Parameters
    ----------
    volumes : int
        n.
    tr : float
        Repetition time in seconds.
    high_pass : float
        In Hz.
    low_pass : float
        In Hz; cosines above it follow those below high_pass.

    Returns
    -------
    ndarray of float64, volumes x cosines

    Raises
    ------
    ValueError
        For negative numbers.

    References
    ----------
    Ahmed, Natarajan and Rao 1974, IEEE Trans Comput C-23:90, doi:10.1109/T-C.1974.223784.

    Examples
    --------
    >>> cosines = nodalis.signals.drift(250, 1.89, 0.008)
    >>> cosines.shape
    (250, 7)
    >>> bool(np.allclose(cosines.T @ cosines, np.eye(7)))
    True
    """
    return _core.drift(
        whole("volumes", volumes),
        real("tr", tr),
        real("high_pass", high_pass),
        optional(real, "low_pass", low_pass),
    )


def detrended(series):
    """The series without their means and least-squares lines over the rows.

        x - a - b t,  a and b of the least squares

    Parameters
    ----------
    series : array, volumes x series
        Finite, in any unit.

    Returns
    -------
    ndarray of float64, volumes x series
        In the same unit.

    Raises
    ------
    ValueError
        If the array has not two dimensions, or a value is not finite.

    References
    ----------
    Any textbook of least squares, such as Draper and Smith, Applied regression analysis, ISBN
    978-0471170822.

    Examples
    --------
    >>> bool(abs(nodalis.signals.detrended(np.arange(10.0)[:, None])).max() < 1e-14)
    True
    """
    return _core.detrended(series)


def butterworth(
    series, tr, *, high_pass=0, low_pass=0, order=5, extension="odd", padding=None
):
    """A Butterworth filter, run forward and backward.

        |H(f)|^2 = 1 / (1 + (f/f_c)^(2 order)) for a low-pass, squared by the two runs

    Nothing is shifted in time. Each run starts where a constant input of its first value would have
    settled.

    Parameters
    ----------
    series : array, volumes x series
        Finite, in any unit.
    tr : float
        Repetition time in seconds.
    high_pass, low_pass : float
        Edges in Hz, where the gain is 1/2; 0 is no edge.
    order : int
        A band of order N has 2 N poles.
    extension : str
        How a series goes on beyond its ends: odd (2 x_0 - x_i) or constant.
    padding : int
        Rows of extension a side; None is 3 (2 S + 1 - min(#(b2 = 0), #(a2 = 0))) of S sections.

    Returns
    -------
    ndarray of float64, volumes x series
        In the same unit.

    Raises
    ------
    ValueError
        If an edge is not within 0 to 1/(2 tr), or there are not more rows than padding.

    References
    ----------
    Butterworth 1930, Experimental Wireless 7:536; Oppenheim and Schafer, Discrete-time signal
    processing, ISBN 978-0131988422.

    Examples
    --------
    >>> t = 2.0 * np.arange(400)
    >>> slow, fast = np.sin(2 * np.pi * 0.02 * t), np.sin(2 * np.pi * 0.2 * t)
    >>> left = nodalis.signals.butterworth((slow + fast)[:, None], 2.0, low_pass=0.08)
    >>> bool(abs(left[50:350, 0] - slow[50:350]).max() < 1e-3)
    True
    """
    return _core.butterworth(
        series,
        real("tr", tr),
        real("high_pass", high_pass),
        real("low_pass", low_pass),
        whole("order", order, 2**31 - 1),
        word("extension", extension),
        optional(whole, "padding", padding),
    )


def butterworth_sections(tr, *, high_pass=0, low_pass=0, order=5):
    """The filter of `butterworth` as second-order sections.

        y = (b0 + b1/z + b2/z^2) / (1 + a1/z + a2/z^2) x

    Parameters
    ----------
    tr : float
        Repetition time in seconds.
    high_pass, low_pass : float
        Edges in Hz; 0 is no edge.
    order : int
        A band of order N has 2 N poles.

    Returns
    -------
    ndarray of float64, sections x 6
        b0 b1 b2 1 a1 a2, the form of scipy.signal. The gain is in the first section.

    Raises
    ------
    ValueError
        If an edge is not within 0 to 1/(2 tr).

    References
    ----------
    Oppenheim and Schafer, Discrete-time signal processing, ISBN 978-0131988422 (bilinear transform).

    Examples
    --------
    >>> nodalis.signals.butterworth_sections(2.0, low_pass=0.1, order=2).round(4)
    array([[ 0.2066,  0.4131,  0.2066,  1.    , -0.3695,  0.1958]])
    """
    return _core.butterworth_sections(
        real("tr", tr),
        real("high_pass", high_pass),
        real("low_pass", low_pass),
        whole("order", order, 2**31 - 1),
    )


def framewise_displacement(motion, *, motion_order="spm"):
    """Framewise displacement.

        FD(t) = sum |translation(t) - translation(t-1)| + 50 mm sum |rotation(t) - rotation(t-1)|

    The arc on a sphere of 50 mm stands for the rotations.

    Parameters
    ----------
    motion : array, volumes x 6
        The parameters of a rigid motion.
    motion_order : str
        spm: 3 translations in mm, then 3 rotations in rad (so are a pipeline's trans_x .. rot_z);
        fsl: 3 rotations in rad, then 3 translations in mm; afni: 3 rotations in degrees, then 3
        translations in mm.

    Returns
    -------
    ndarray of float64, volumes
        In mm; NaN in row 0.

    Raises
    ------
    ValueError
        If there are not six columns.

    References
    ----------
    Power et al. 2012, NeuroImage 59:2142, doi:10.1016/j.neuroimage.2011.10.018.

    Examples
    --------
    >>> nodalis.signals.framewise_displacement([[0, 0, 0, 0, 0, 0], [0.5, 0, -1, 0, 0.01, 0]])
    array([nan,  2.])
    """
    return _core.framewise_displacement(motion, word("motion_order", motion_order))


def dvars(series):
    """How much the image changes from a volume to the next.

        DVARS(t) = sqrt(mean over voxels of (x(t) - x(t-1))^2)
        standardised(t) = DVARS(t) / mean over voxels of (sqrt(2 (1 - a)) s)
        s = (Q75 - Q25)/1.349,  a = sum y(t) y(t+1) / sum y(t)^2 of the demeaned y

    Q is the value at index floor(q (T - 1)) of the sorted series. Voxels with s = 0 are left out.

    Parameters
    ----------
    series : array, volumes x voxels
        Those of the mask, in any unit.

    Returns
    -------
    Dvars

    Raises
    ------
    ValueError
        If a value is not finite.

    References
    ----------
    Power et al. 2012, NeuroImage 59:2142, doi:10.1016/j.neuroimage.2011.10.018; Nichols 2017,
    arXiv:1704.01469; Afyouni and Nichols 2018, NeuroImage 172:291,
    doi:10.1016/j.neuroimage.2017.12.098.

    Examples
    --------
    >>> nodalis.signals.dvars([[0, 1], [2, 1], [2, 4], [5, 8]]).plain.round(4)
    array([   nan, 1.4142, 2.1213, 3.5355])
    """
    return Dvars(*_core.dvars(series))


def dvars_scale(series):
    """What brings the median over all volumes and voxels to 1000, by which DVARS is multiplied for display.

        1000 / median(x)

    Parameters
    ----------
    series : array, volumes x voxels
        Those of the mask, in any unit.

    Returns
    -------
    float
        NaN for no data, or a median of 0.

    Raises
    ------
    ValueError
        If the array has not two dimensions.

    References
    ----------
    Power et al. 2012, NeuroImage 59:2142, doi:10.1016/j.neuroimage.2011.10.018.

    Examples
    --------
    >>> nodalis.signals.dvars_scale([[400, 500], [500, 600]])
    2.0
    """
    return _core.dvars_scale(series)
