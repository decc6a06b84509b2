# SPDX-License-Identifier: GPL-3.0-or-later
"""Measures of brain networks, cleaning of time series, and group statistics on edges.

A graph is a square array of weights, a stack of graphs is k x n x n. What holds for every measure:

- Arrays of float32 and float64 are read where they are, in C or Fortran order, with gaps or
  read-only, and copied once. Other real numbers, booleans and lists become float64 first. The
  argument stays as it is.
- Measures are computed in double precision from single precision weights: a float64 is rounded to
  the nearest float32, and what lies below 1e-45 becomes 0. Results are float32, spectra float64.
- A matrix is read as `treatment` would leave it: what is not finite is no edge, the diagonal is
  ignored, and w_ij and w_ji are averaged where they differ. No measure rescales it.
- An edge of `degree`, `strength`, `eigenvector_centrality` and of spectra is w != 0; of all others
  w > 0, so that they see the positive part of signed input only.
- A stack is worked on by several threads, `threads` of them or one per processor for 0. The results
  are the same, to the last bit, on any number of threads and any processor.
- The interpreter's lock is released while a function computes.
- What cannot be computed raises ValueError, for a wrong shape with the one that came and the one
  expected.

`nodalis.signals` cleans time series, `nodalis.statistics` has the group statistics.
"""

from . import _nodalis, signals, statistics
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


def version():
    """The version of the library, "major.minor.patch".

    Returns
    -------
    str

    Examples
    --------
    >>> nodalis.version().split(".")[0]
    '1'
    """
    return _nodalis.version()


__version__ = version()
