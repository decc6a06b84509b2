# SPDX-License-Identifier: GPL-3.0-or-later
# The extension module behind the package; its functions are for the package alone.
from typing import Any

def __getattr__(name: str) -> Any: ...
