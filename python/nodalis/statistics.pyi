# SPDX-License-Identifier: GPL-3.0-or-later
from typing import Any, Dict, List, Mapping, NamedTuple, Optional, Sequence, Tuple, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

__all__ = [
    "Component",
    "Design",
    "DistanceAnova",
    "EdgewiseGlm",
    "Fingerprint",
    "FisherZ",
    "Icc",
    "Nbs",
    "QcFc",
    "design",
    "distance_anova",
    "edges",
    "edgewise_glm",
    "fingerprint",
    "fisher_z",
    "icc",
    "nbs",
    "qcfc",
]

class FisherZ(NamedTuple):
    z: NDArray[np.float64]
    clipped: NDArray[np.int64]

class Design(NamedTuple):
    matrix: NDArray[np.float64]
    columns: List[str]
    rows: NDArray[np.int64]
    missing: List[Tuple[int, str]]
    categories: Dict[str, Dict[str, int]]

class EdgewiseGlm(NamedTuple):
    estimate: NDArray[np.float64]
    statistic: NDArray[np.float64]
    p: NDArray[np.float64]
    p_perm: Optional[NDArray[np.float64]]
    p_fwe: Optional[NDArray[np.float64]]
    q: NDArray[np.float64]
    df: float
    tested: float
    constant_edges: NDArray[np.int64]
    null_maximum: Optional[NDArray[np.float64]]
    permutations: int
    exhaustive: bool

class Component(NamedTuple):
    side: str
    edges: NDArray[np.int64]
    intensity: float
    p_extent: float
    p_intensity: float

class Nbs(NamedTuple):
    components: List[Component]
    null_extent: NDArray[np.float64]
    null_intensity: NDArray[np.float64]
    threshold: float
    model: EdgewiseGlm

class Icc(NamedTuple):
    icc_1_1: NDArray[np.float64]
    icc_2_1: NDArray[np.float64]
    icc_3_1: NDArray[np.float64]

class Fingerprint(NamedTuple):
    similarity: NDArray[np.float64]
    rate_1_to_2: float
    rate_2_to_1: float
    p_1_to_2: float
    p_2_to_1: float
    idiff: float
    null_1_to_2: NDArray[np.float64]
    null_2_to_1: NDArray[np.float64]

class QcFc(NamedTuple):
    r: NDArray[np.float64]
    p: NDArray[np.float64]
    q: NDArray[np.float64]
    df: float
    share_p_below_05: float
    share_q_below_05: float
    median_absolute_r: float
    distance_dependence: float
    distances: int

class DistanceAnova(NamedTuple):
    f: float
    df_tested: float
    df_residual: float
    r_squared: float
    p: float
    null_f: NDArray[np.float64]

def edges(matrices: ArrayLike) -> NDArray[np.float64]: ...
def fisher_z(correlations: ArrayLike) -> FisherZ: ...
def design(
    formula: str,
    table: Union[Mapping[str, Sequence[Any]], Any],
    *,
    other_columns: Sequence[str] = ...,
) -> Design: ...
def edgewise_glm(
    data: ArrayLike,
    design: Union[Design, ArrayLike],
    contrast: Union[str, ArrayLike],
    *,
    columns: Optional[Sequence[str]] = ...,
    sides: str = ...,
    permutations: int = ...,
    seed: int = ...,
    exchange: str = ...,
    blocks: Optional[Sequence[Any]] = ...,
    given: Optional[ArrayLike] = ...,
    threads: int = ...,
) -> EdgewiseGlm: ...
def nbs(
    data: ArrayLike,
    design: Union[Design, ArrayLike],
    contrast: Union[str, ArrayLike],
    threshold: float,
    *,
    columns: Optional[Sequence[str]] = ...,
    sides: str = ...,
    permutations: int = ...,
    seed: int = ...,
    exchange: str = ...,
    blocks: Optional[Sequence[Any]] = ...,
    given: Optional[ArrayLike] = ...,
    threads: int = ...,
) -> Nbs: ...
def icc(sessions: Sequence[ArrayLike]) -> Icc: ...
def fingerprint(
    session_1: ArrayLike, session_2: ArrayLike, *, permutations: int = ..., seed: int = ...
) -> Fingerprint: ...
def qcfc(
    data: ArrayLike,
    mean_fd: ArrayLike,
    *,
    covariates: Union[Design, ArrayLike, None] = ...,
    columns: Optional[Sequence[str]] = ...,
    distances: Optional[ArrayLike] = ...,
) -> QcFc: ...
def distance_anova(
    distances: ArrayLike,
    design: Union[Design, ArrayLike],
    contrast: Union[str, ArrayLike],
    *,
    columns: Optional[Sequence[str]] = ...,
    permutations: int = ...,
    seed: int = ...,
    blocks: Optional[Sequence[Any]] = ...,
    given: Optional[ArrayLike] = ...,
    threads: int = ...,
) -> DistanceAnova: ...
