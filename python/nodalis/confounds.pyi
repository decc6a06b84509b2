# SPDX-License-Identifier: GPL-3.0-or-later
import os
from typing import Any, List, Mapping, NamedTuple, Optional, Union

import numpy as np
from numpy.typing import NDArray

class Component(NamedTuple):
    name: str
    method: str
    mask: str
    retained: bool

class ConfoundsTable(NamedTuple):
    names: List[str]
    values: NDArray[np.float64]
    components: Optional[List[Component]]

def read_confounds(path: Union[str, os.PathLike[str]]) -> ConfoundsTable: ...
def as_table(
    confounds: Union[str, os.PathLike[str], ConfoundsTable, Mapping[str, Any], Any]
) -> ConfoundsTable: ...
