# SPDX-License-Identifier: GPL-3.0-or-later
import os
from typing import Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

def treatment(matrix: ArrayLike, *, threads: int = ...) -> NDArray[np.float32]: ...
def to_csv(matrix: ArrayLike, path: Union[str, os.PathLike[str]]) -> None: ...
