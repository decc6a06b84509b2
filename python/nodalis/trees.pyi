# SPDX-License-Identifier: GPL-3.0-or-later
from typing import NamedTuple

import numpy as np
from numpy.typing import ArrayLike, NDArray

class SpanningTree(NamedTuple):
    weights: NDArray[np.float32]
    edges: NDArray[np.int32]

def minimum_spanning_tree(
    matrix: ArrayLike,
    *,
    weights_are_lengths: bool = ...,
    mirrored: bool = ...,
    threads: int = ...,
) -> SpanningTree: ...
