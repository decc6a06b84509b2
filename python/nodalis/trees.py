# SPDX-License-Identifier: GPL-3.0-or-later
"""Spanning trees. What holds for all functions stands in `nodalis`."""

from typing import NamedTuple

from . import _nodalis
from ._arguments import thread_count


class SpanningTree(NamedTuple):
    """A minimum spanning tree, or a forest of one tree per component.

    Attributes
    ----------
    weights : ndarray of float32, n x n or k x n x n
        The weights of the tree's edges and 0 elsewhere.
    edges : ndarray of int32, n x n or k x n x n
        1 for the tree's edges and 0 elsewhere.
    """

    weights: "numpy.ndarray"
    edges: "numpy.ndarray"


def minimum_spanning_tree(matrix, *, weights_are_lengths=False, mirrored=True, threads=0):
    """The shortest connections that join all nodes without a cycle, n - components edges.

    Entries are connection strengths unless `weights_are_lengths` says otherwise; the strongest
    connection is the shortest, so that the tree has the largest total weight. An entry w <= 0 is no
    edge, in either meaning.

    Edges are compared by their weights themselves, never by 1/w or 1 - w. Ties: edges rank by (w
    descending, i ascending, j ascending) with i < j, for lengths by (w ascending, i, j); the tree is
    the one that Kruskal's method builds in that order, so that it is unique.

    Parameters
    ----------
    matrix : array, n x n or k x n x n
        Weights in any unit; float64 is rounded to float32.
    weights_are_lengths : bool
        False: entries are strengths, the tree has the largest total. True: entries are lengths, it
        has the smallest.
    mirrored : bool
        True fills both triangles of the results, False only the one above the diagonal.
    threads : int
        For a stack; 0 is one per processor.

    Returns
    -------
    SpanningTree
        `weights` (in their unit) and `edges` (0 and 1).

    Raises
    ------
    ValueError
        If the matrix is not square.

    References
    ----------
    Kruskal 1956, Proc Am Math Soc 7:48, doi:10.1090/S0002-9939-1956-0078686-7; on brain networks Stam
    et al. 2014, Int J Psychophysiol 92:129, doi:10.1016/j.ijpsycho.2014.04.001.

    Examples
    --------
    >>> triangle = np.array([[0, 0.5, 0.25], [0.5, 0, 0.75], [0.25, 0.75, 0]])
    >>> tree = nodalis.minimum_spanning_tree(triangle, mirrored=False)
    >>> tree.edges
    array([[0, 1, 0],
           [0, 0, 1],
           [0, 0, 0]], dtype=int32)
    >>> tree.weights.sum()
    1.25
    """
    return SpanningTree(
        *_nodalis.minimum_spanning_tree(
            matrix, bool(weights_are_lengths), bool(mirrored), thread_count(threads)
        )
    )
