# SPDX-License-Identifier: GPL-3.0-or-later
"""Spectra of graphs and distances between them. What holds for all functions stands in `nodalis`."""

from . import _nodalis
from ._arguments import thread_count, whole


def spectral_euclidean(a, b, size=0, *, threads=0):
    """Spectral distance of two graphs, the Euclidean norm of the difference of their sorted spectra.

        d = |sorted eigenvalues of a - sorted eigenvalues of b|

    Both graphs are padded with unconnected nodes to m = max(n_a, n_b, size) first. Each such node is
    an eigenvalue 0 that takes its place in the sorted order, so that distances are comparable for one
    m only. Negative weights are kept.

    Parameters
    ----------
    a, b : array, n x n or k x n x n
        Weights in one unit; float64 is rounded to float32. Two stacks are compared pair by pair, a
        stack and a graph each with the one.
    size : int
        The least number of nodes to compare at.
    threads : int
        For a stack; 0 is one per processor.

    Returns
    -------
    float, or ndarray of float32, k
        In the unit of the weights; 0 between graphs of equal spectra.

    Raises
    ------
    ValueError
        If a matrix is not square, or two stacks differ in length.

    References
    ----------
    Wilson and Zhu 2008, Pattern Recognit 41:2833, doi:10.1016/j.patcog.2008.03.011.

    Examples
    --------
    >>> edge = np.array([[0, 1], [1, 0]])  # eigenvalues -1 and 1
    >>> round(nodalis.spectral_euclidean(edge, 3 * edge), 6)  # sqrt(2^2 + 2^2)
    2.828427

    For distances between all of many graphs take `spectrum` once and then `between_spectra`.
    """
    return _nodalis.spectral_euclidean(
        a, b, whole("size", size, 2**31 - 1), thread_count(threads)
    )


def spectrum(matrix, *, threads=0):
    """The adjacency spectrum of a graph, as `spectral_euclidean` takes it.

        W v_i = lambda_i v_i,  lambda_1 <= lambda_2 <= ... <= lambda_n

    Parameters
    ----------
    matrix : array, n x n or k x n x n
        Weights in any unit; float64 is rounded to float32.
    threads : int
        For a stack; 0 is one per processor.

    Returns
    -------
    ndarray of float64, n or k x n
        The eigenvalues in ascending order, in the unit of the weights.

    Raises
    ------
    ValueError
        If the matrix is not square.

    References
    ----------
    Wilson and Zhu 2008, Pattern Recognit 41:2833, doi:10.1016/j.patcog.2008.03.011.

    Examples
    --------
    >>> nodalis.spectrum([[0, 2], [2, 0]])
    array([-2.,  2.])
    """
    return _nodalis.spectrum(matrix, thread_count(threads))


def between_spectra(a, b, size=0):
    """`spectral_euclidean` of two graphs by their spectra: the same value, quickly for many pairs.

        d = |a - b|, both padded with zeros in their sorted places to max(n_a, n_b, size)

    Parameters
    ----------
    a, b : array, n or k x n
        Of `spectrum`. Two lists of spectra are compared pair by pair, a list and a spectrum each with
        the one.
    size : int
        The least number of nodes to compare at.

    Returns
    -------
    float, or ndarray of float32, k
        In the unit of the weights.

    Raises
    ------
    ValueError
        If an array is in no ascending order, or two lists differ in length.

    References
    ----------
    Wilson and Zhu 2008, Pattern Recognit 41:2833, doi:10.1016/j.patcog.2008.03.011.

    Examples
    --------
    The distances of all pairs of a stack, as `nodalis.statistics.distance_anova` takes them:

    >>> edge = np.array([[0, 1], [1, 0]])
    >>> spectra = nodalis.spectrum(np.stack([edge, 2 * edge, 3 * edge]))
    >>> np.stack([nodalis.between_spectra(spectra, each) for each in spectra]).round(4)
    array([[0.    , 1.4142, 2.8284],
           [1.4142, 0.    , 1.4142],
           [2.8284, 1.4142, 0.    ]], dtype=float32)
    """
    return _nodalis.between_spectra(a, b, whole("size", size, 2**31 - 1))
