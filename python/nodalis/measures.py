# SPDX-License-Identifier: GPL-3.0-or-later
"""Measures of graphs and of their nodes. What holds for all of them stands in `nodalis`."""

from . import _nodalis
from ._arguments import thread_count


def degree(matrix, *, threads=0):
    """Number of connections of each node.

        k_i = number of j != i with w_ij != 0

    Negative weights count as well. Two one-sided weights that cancel (w_ij = -w_ji) are no
    connection.

    Parameters
    ----------
    matrix : array, n x n or k x n x n
        Weights in any unit; float64 is rounded to float32.
    threads : int
        For a stack; 0 is one per processor.

    Returns
    -------
    ndarray of float32, n or k x n
        0 to n - 1, without a unit; 0 for an isolated node.

    Raises
    ------
    ValueError
        If the matrix is not square.

    References
    ----------
    Rubinov and Sporns 2010, NeuroImage 52:1059, table A1, doi:10.1016/j.neuroimage.2009.10.003.

    Examples
    --------
    >>> path = np.array([[0, 0.5, 0], [0.5, 0, 0.25], [0, 0.25, 0]])
    >>> nodalis.degree(path)
    array([1., 2., 1.], dtype=float32)
    """
    return _nodalis.degree(matrix, thread_count(threads))


def strength(matrix, *, threads=0):
    """Sum of the weights of each node.

        s_i = sum over j != i of w_ij

    The plain signed sum: negative weights subtract. For weights of 0 and 1 it is the degree.

    Parameters
    ----------
    matrix : array, n x n or k x n x n
        Weights in any unit; float64 is rounded to float32.
    threads : int
        For a stack; 0 is one per processor.

    Returns
    -------
    ndarray of float32, n or k x n
        In the unit of the weights; 0 for an isolated node.

    Raises
    ------
    ValueError
        If the matrix is not square.

    References
    ----------
    Barrat et al. 2004, PNAS 101:3747, doi:10.1073/pnas.0400087101.

    Examples
    --------
    >>> path = np.array([[0, 0.5, 0], [0.5, 0, 0.25], [0, 0.25, 0]])
    >>> nodalis.strength(path)
    array([0.5 , 0.75, 0.25], dtype=float32)
    """
    return _nodalis.strength(matrix, thread_count(threads))


def clustering_coeff(matrix, *, threads=0):
    """Clustering coefficient of each node, the geometric mean of the weights in its triangles.

        C_i = 1 / (k_i (k_i - 1)) * sum over j != h of (w_ij w_ih w_jh)^(1/3)

    with k_i the number of neighbours, w > 0. Weights enter as they are, not divided by the largest.

    Parameters
    ----------
    matrix : array, n x n or k x n x n
        Weights in any unit; float64 is rounded to float32. Negative ones are no edges.
    threads : int
        For a stack; 0 is one per processor.

    Returns
    -------
    ndarray of float32, n or k x n
        In the unit of the weights, 0 to the largest of them; for weights of 0 and 1 the share of
        possible triangles. 0 for a node with fewer than two neighbours.

    Raises
    ------
    ValueError
        If the matrix is not square.

    References
    ----------
    Onnela et al. 2005, Phys Rev E 71:065103, doi:10.1103/PhysRevE.71.065103.

    Examples
    --------
    >>> triangle_and_leaf = np.zeros((4, 4))
    >>> triangle_and_leaf[[0, 0, 1, 2], [1, 2, 2, 3]] = 2
    >>> nodalis.clustering_coeff(triangle_and_leaf)  # one-sided weights are halved
    array([1.        , 1.        , 0.33333334, 0.        ], dtype=float32)
    """
    return _nodalis.clustering_coeff(matrix, thread_count(threads))


def local_efficiency(matrix, *, threads=0):
    """Local efficiency of each node, how well its neighbours are connected without it.

        E_i = 1 / (k_i (k_i - 1)) * sum over j != h in N_i of (w_ij w_ih)^(1/3) / d_jh(N_i)

    N_i are the neighbours of i (w > 0), k_i their number, and d_jh(N_i) the length of the shortest
    path from j to h among the neighbours alone, without i, where an edge has the length (1/w)^(1/3).
    Neighbours that do not reach each other add 0. Paths may not leave the neighbourhood, unlike in
    some other implementations.

    Parameters
    ----------
    matrix : array, n x n or k x n x n
        Weights in any unit; float64 is rounded to float32. Negative ones are no edges.
    threads : int
        0 is one per processor. They do not change the result.

    Returns
    -------
    ndarray of float32, n or k x n
        In the unit of the weights; for weights of 0 and 1 the binary local efficiency, 0 to 1. 0 for
        a node with fewer than two neighbours.

    Raises
    ------
    ValueError
        If the matrix is not square.

    References
    ----------
    Wang et al. 2017, Neural Comput 29:313, doi:10.1162/NECO_a_00914.

    Examples
    --------
    >>> nodalis.local_efficiency(np.ones((4, 4)))
    array([1., 1., 1., 1.], dtype=float32)
    """
    return _nodalis.local_efficiency(matrix, thread_count(threads))


def local_efficiency_relaxations(matrix, *, threads=0):
    """How much `local_efficiency` has to do, to tell beforehand how long it takes.

    The number of times that it compares a length of a path with another way; for n nodes
    `global_efficiency` does so about n^3 times. Neighbourhoods of a dense graph share most of them.

    Parameters
    ----------
    matrix : array, n x n or k x n x n
        Weights in any unit; float64 is rounded to float32. Negative ones are no edges.
    threads : int
        0 is one per processor. They do not change the result.

    Returns
    -------
    float, or ndarray of float64, k

    Raises
    ------
    ValueError
        If the matrix is not square.

    References
    ----------
    Wang et al. 2017, Neural Comput 29:313, doi:10.1162/NECO_a_00914, of local efficiency itself.

    Examples
    --------
    >>> complete = np.ones((500, 500))
    >>> half = np.triu(np.random.default_rng(1).integers(0, 2, (500, 500)))
    >>> shared = nodalis.local_efficiency_relaxations(complete)
    >>> bool(nodalis.local_efficiency_relaxations(half + half.T) > 2 * shared)
    True
    """
    return _nodalis.local_efficiency_relaxations(matrix, thread_count(threads))


def global_efficiency(matrix, *, threads=0):
    """Global efficiency, the mean inverse shortest path length over all pairs of nodes.

        E = 1 / (n (n - 1)) * sum over i != j of 1 / d_ij

    where an edge (w > 0) has the length 1/w. Nodes that do not reach each other add 0.

    Parameters
    ----------
    matrix : array, n x n or k x n x n
        Weights in any unit; float64 is rounded to float32. Negative ones are no edges.
    threads : int
        0 is one per processor. They do not change the result.

    Returns
    -------
    float, or ndarray of float32, k
        In the unit of the weights, 0 to the largest of them; 0 for n < 2.

    Raises
    ------
    ValueError
        If the matrix is not square.

    References
    ----------
    Latora and Marchiori 2001, Phys Rev Lett 87:198701, doi:10.1103/PhysRevLett.87.198701.

    Examples
    --------
    >>> path = np.array([[0, 1, 0], [1, 0, 1], [0, 1, 0]])
    >>> round(nodalis.global_efficiency(path), 6)  # (1 + 1 + 1/2) / 3
    0.833333
    """
    return _nodalis.global_efficiency(matrix, thread_count(threads))


def nodal_global_efficiency(matrix, *, threads=0):
    """Global efficiency of each node, the mean inverse shortest path length to all others.

        E_i = 1 / (n - 1) * sum over j != i of 1 / d_ij

    with d as in `global_efficiency`, which is its mean. It equals the normalised harmonic centrality
    with lengths 1/w.

    Parameters
    ----------
    matrix : array, n x n or k x n x n
        Weights in any unit; float64 is rounded to float32. Negative ones are no edges.
    threads : int
        0 is one per processor. They do not change the result.

    Returns
    -------
    ndarray of float32, n or k x n
        In the unit of the weights, 0 to the largest of them; 0 for an isolated node.

    Raises
    ------
    ValueError
        If the matrix is not square.

    References
    ----------
    Achard and Bullmore 2007, PLoS Comput Biol 3:e17, doi:10.1371/journal.pcbi.0030017.

    Examples
    --------
    >>> path = np.array([[0, 1, 0], [1, 0, 1], [0, 1, 0]])
    >>> nodalis.nodal_global_efficiency(path)
    array([0.75, 1.  , 0.75], dtype=float32)
    """
    return _nodalis.nodal_global_efficiency(matrix, thread_count(threads))


def eigenvector_centrality(matrix, *, threads=0):
    """Eigenvector centrality of each node.

        W v = lambda v,  lambda the largest (most positive) eigenvalue,  v >= 0,  |v| = 1

    Where several eigenvectors share the largest eigenvalue, as in a graph of equal components, it is
    the normalised projection of the vector of ones on their space. In a disconnected graph only
    components of the largest eigenvalue have values above 0. Signed input keeps its negative weights;
    of an eigenvector of mixed sign the absolute values are given.

    Parameters
    ----------
    matrix : array, n x n or k x n x n
        Weights in any unit; float64 is rounded to float32.
    threads : int
        For a stack; 0 is one per processor.

    Returns
    -------
    ndarray of float32, n or k x n
        0 to 1, of unit 2-norm, without a unit; zeros for a graph without edges. The error is about
        1e-7 as long as the relative gap to the next eigenvalue is above 1e-6.

    Raises
    ------
    ValueError
        If the matrix is not square.

    References
    ----------
    Bonacich 1972, J Math Sociol 2:113, doi:10.1080/0022250X.1972.9989806.

    Examples
    --------
    >>> star = np.zeros((5, 5))
    >>> star[0, 1:] = star[1:, 0] = 1
    >>> nodalis.eigenvector_centrality(star).round(4)
    array([0.7071, 0.3536, 0.3536, 0.3536, 0.3536], dtype=float32)
    """
    return _nodalis.eigenvector_centrality(matrix, thread_count(threads))
