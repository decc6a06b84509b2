# SPDX-License-Identifier: GPL-3.0-or-later
from . import signals, statistics
from .matrices import to_csv, treatment
from .measures import (
    clustering_coeff,
    degree,
    eigenvector_centrality,
    global_efficiency,
    local_efficiency,
    local_efficiency_relaxations,
    nodal_global_efficiency,
    strength,
)
from .spectra import between_spectra, spectral_euclidean, spectrum
from .trees import SpanningTree, minimum_spanning_tree

__all__ = [
    "SpanningTree",
    "between_spectra",
    "clustering_coeff",
    "degree",
    "eigenvector_centrality",
    "global_efficiency",
    "local_efficiency",
    "local_efficiency_relaxations",
    "minimum_spanning_tree",
    "nodal_global_efficiency",
    "signals",
    "spectral_euclidean",
    "spectrum",
    "statistics",
    "strength",
    "to_csv",
    "treatment",
    "version",
]

__version__: str

def version() -> str: ...
