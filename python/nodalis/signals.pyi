# SPDX-License-Identifier: GPL-3.0-or-later
import os
from typing import Any, List, Mapping, NamedTuple, Optional, Sequence, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

from .confounds import Component as Component
from .confounds import ConfoundsTable as ConfoundsTable
from .confounds import read_confounds as read_confounds

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

class Ledger(NamedTuple):
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
    series: NDArray[np.float64]
    rows: NDArray[np.int64]
    means: NDArray[np.float64]
    without_mean: NDArray[np.int64]
    names: List[str]
    design: NDArray[np.float64]
    ledger: Ledger
    notes: List[str]

class Dvars(NamedTuple):
    plain: NDArray[np.float64]
    standardised: NDArray[np.float64]

class Strategy(NamedTuple):
    name: str
    regressors: str
    censoring: str

class Selection(NamedTuple):
    names: List[str]
    values: NDArray[np.float64]
    filter_only: bool
    non_steady: NDArray[np.bool_]
    censored: NDArray[np.bool_]
    fd: NDArray[np.float64]
    fd_threshold: float
    dvars_threshold: float
    min_segment: int
    order: str
    notes: List[str]

def clean(
    series: ArrayLike,
    confounds: Union[Selection, ArrayLike, None] = ...,
    *,
    tr: float,
    names: Optional[Sequence[str]] = ...,
    non_steady: Optional[ArrayLike] = ...,
    censored: Optional[ArrayLike] = ...,
    order: str = ...,
    high_pass: Optional[float] = ...,
    low_pass: Optional[float] = ...,
    detrend: bool = ...,
    standardize: str = ...,
) -> Cleaned: ...
def strategies() -> List[Strategy]: ...
def select(
    confounds: Union[str, os.PathLike[str], ConfoundsTable, Mapping[str, Any], Any],
    strategy: str,
    *,
    order: str = ...,
    fd_threshold: Optional[float] = ...,
    dvars_threshold: Optional[float] = ...,
    min_segment: Optional[int] = ...,
    dummy_scans: Optional[int] = ...,
    components: Optional[int] = ...,
    censor: Optional[ArrayLike] = ...,
    motion_order: Optional[str] = ...,
) -> Selection: ...
def drift(
    volumes: int, tr: float, high_pass: float, low_pass: Optional[float] = ...
) -> NDArray[np.float64]: ...
def detrended(series: ArrayLike) -> NDArray[np.float64]: ...
def butterworth(
    series: ArrayLike,
    tr: float,
    *,
    high_pass: float = ...,
    low_pass: float = ...,
    order: int = ...,
    extension: str = ...,
    padding: Optional[int] = ...,
) -> NDArray[np.float64]: ...
def butterworth_sections(
    tr: float, *, high_pass: float = ..., low_pass: float = ..., order: int = ...
) -> NDArray[np.float64]: ...
def framewise_displacement(
    motion: ArrayLike, *, motion_order: str = ...
) -> NDArray[np.float64]: ...
def dvars(series: ArrayLike) -> Dvars: ...
def dvars_scale(series: ArrayLike) -> float: ...
