# SPDX-License-Identifier: GPL-3.0-or-later
"""What is done to a matrix as a whole. What holds for all functions stands in `nodalis`."""

import os

from . import _nodalis
from ._arguments import thread_count


def treatment(matrix, *, threads=0):
    """Conditions a raw matrix, so that it is a graph's weight matrix.

    In this order: entries that are not finite become 0, the diagonal becomes 0, and

        w_ij = w_ji = (w_ij + w_ji) / 2

    rounded once to single precision. Signs and scale are kept. A NaN on one side only therefore
    counts as 0 in the mean. Applying it twice changes nothing. All measures do this by themselves.

    Parameters
    ----------
    matrix : array, n x n or k x n x n
        Weights in any unit; float64 is rounded to float32. It stays as it is.
    threads : int
        For a stack; 0 is one per processor.

    Returns
    -------
    ndarray of float32, n x n or k x n x n
        A new matrix, in the unit of the weights.

    Raises
    ------
    ValueError
        If the matrix is not square.

    References
    ----------
    The weight clean-up described by Rubinov and Sporns 2010, NeuroImage 52:1059,
    doi:10.1016/j.neuroimage.2009.10.003.

    Examples
    --------
    >>> nodalis.treatment([[1, 0.5, np.nan], [0.25, 1, 2], [1, 2, 1]])
    array([[0.   , 0.375, 0.5  ],
           [0.375, 0.   , 2.   ],
           [0.5  , 2.   , 0.   ]], dtype=float32)
    """
    return _nodalis.treatment(matrix, thread_count(threads))


def to_csv(matrix, path):
    """Writes a matrix of any shape as comma-separated values.

    One line per row, no header. Each value is the shortest decimal text that reads back as the same
    float32; "nan", "inf" and "-inf" for what is not finite. The file appears as a whole or not at
    all, and replaces an older one.

    Parameters
    ----------
    matrix : array, rows x columns
        float64 is rounded to float32.
    path : str or path
        ".csv" is added unless it ends so already.

    Raises
    ------
    ValueError
        If the array has not two dimensions.
    OSError
        If the file cannot be written; an older one is then as it was.

    Examples
    --------
    >>> nodalis.to_csv([[0, 0.1], [0.1, 0]], folder / "weights")
    >>> (folder / "weights.csv").read_text()
    '0,0.1\\n0.1,0\\n'
    """
    text = os.fsdecode(path)
    if not _nodalis.to_csv(matrix, text):
        raise OSError(f"cannot write {text}")
