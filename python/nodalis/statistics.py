# SPDX-License-Identifier: GPL-3.0-or-later
"""Group statistics on the edges of networks.

Data are subjects x edges, or subjects x nodes x nodes, of which the upper triangles are taken row by
row: (0,1), (0,2), ..., (0,N-1), (1,2), ... All is computed in double precision. What holds for edges
holds for other measures in columns, such as one value per node; only networks need an upper triangle.
docs/statistics.md of the project has all formulas.

The same seed gives the same bytes on any number of threads and on every system.
"""

from typing import NamedTuple

import numpy as np

from . import _nodalis
from ._arguments import column_names, real, thread_count, whole, word

__all__ = [
    "Component",
    "Design",
    "DistanceAnova",
    "EdgewiseGlm",
    "Fingerprint",
    "FisherZ",
    "Icc",
    "Nbs",
    "QcFc",
    "design",
    "distance_anova",
    "edges",
    "edgewise_glm",
    "fingerprint",
    "fisher_z",
    "icc",
    "nbs",
    "qcfc",
]

_core = _nodalis.statistics


class FisherZ(NamedTuple):
    """Fisher's z.

    Attributes
    ----------
    z : ndarray of float64, subjects x edges
    clipped : ndarray of int, m x 2
        Subject and edge of each correlation that was clipped.
    """

    z: "numpy.ndarray"
    clipped: "numpy.ndarray"


class Design(NamedTuple):
    """A design matrix with names.

    Attributes
    ----------
    matrix : ndarray of float64, included rows x columns
    columns : list of str
    rows : ndarray of int
        The rows of the table that are included, ascending.
    missing : list of (int, str)
        Row and column of what the rows that left lack.
    categories : dict
        Of each column that was taken as a category the levels, the reference first, with the number of
        included rows.
    """

    matrix: "numpy.ndarray"
    columns: list
    rows: "numpy.ndarray"
    missing: list
    categories: dict


class EdgewiseGlm(NamedTuple):
    """A linear model at each edge.

    Attributes
    ----------
    estimate : ndarray of float64, edges
        c'b, in the unit of the data; empty for F.
    statistic : ndarray of float64, edges
        t or F.
    p : ndarray of float64, edges
        Of Student's t or of F.
    p_perm, p_fwe : ndarray of float64, edges, or None
        By permutation: of each edge, and by the largest statistic of all edges (max-T). None without
        permutations.
    q : ndarray of float64, edges
        Benjamini and Hochberg's, of p.
    df, tested : float
        Degrees of freedom of the denominator, and of the numerator.
    constant_edges : ndarray of int
        Edges with nothing to explain; t is 0 and p is 1.
    null_maximum : ndarray of float64 or None
        The largest |t| (each, both), t (greater), -t (less) or F of each permutation.
    permutations : int
        How many were done.
    exhaustive : bool
        Whether these are all distinct ones.
    """

    estimate: "numpy.ndarray"
    statistic: "numpy.ndarray"
    p: "numpy.ndarray"
    p_perm: "numpy.ndarray | None"
    p_fwe: "numpy.ndarray | None"
    q: "numpy.ndarray"
    df: float
    tested: float
    constant_edges: "numpy.ndarray"
    null_maximum: "numpy.ndarray | None"
    permutations: int
    exhaustive: bool


class Component(NamedTuple):
    """A connected component of the edges above a threshold.

    It is the component as a whole that the p values are of, not any of its edges.

    Attributes
    ----------
    side : str
        greater, less or both.
    edges : ndarray of int, extent x 2
        The nodes of each edge.
    intensity : float
        Sum over its edges of (t - threshold).
    p_extent, p_intensity : float
    """

    side: str
    edges: "numpy.ndarray"
    intensity: float
    p_extent: float
    p_intensity: float


class Nbs(NamedTuple):
    """Networks above a threshold.

    Attributes
    ----------
    components : list of Component
        greater before less, those with most edges first.
    null_extent, null_intensity : ndarray of float64
        The largest of each permutation, each taken on its own; 0 without a component.
    threshold : float
    model : EdgewiseGlm
        The edges one by one, by the same permutations.
    """

    components: list
    null_extent: "numpy.ndarray"
    null_intensity: "numpy.ndarray"
    threshold: float
    model: EdgewiseGlm


class Icc(NamedTuple):
    """Intraclass correlations of each edge.

    Attributes
    ----------
    icc_1_1, icc_2_1, icc_3_1 : ndarray of float64, edges
        One-way random; two-way random (agreement); two-way mixed (consistency).
    """

    icc_1_1: "numpy.ndarray"
    icc_2_1: "numpy.ndarray"
    icc_3_1: "numpy.ndarray"


class Fingerprint(NamedTuple):
    """Whether subjects are known again.

    Attributes
    ----------
    similarity : ndarray of float64, subjects x subjects
        Pearson's correlation of i in session 1 and j in session 2.
    rate_1_to_2, rate_2_to_1 : float
        Share of rows (columns) whose largest entry is the subject's own.
    p_1_to_2, p_2_to_1 : float
    idiff : float
        100 (mean C_ii - mean of C_ij, i != j).
    null_1_to_2, null_2_to_1 : ndarray of float64
        Rates with shuffled identities.
    """

    similarity: "numpy.ndarray"
    rate_1_to_2: float
    rate_2_to_1: float
    p_1_to_2: float
    p_2_to_1: float
    idiff: float
    null_1_to_2: "numpy.ndarray"
    null_2_to_1: "numpy.ndarray"


class QcFc(NamedTuple):
    """How much of each edge follows the subjects' motion.

    Attributes
    ----------
    r, p, q : ndarray of float64, edges
        Partial correlation, two-sided p, Benjamini and Hochberg's q; NaN where an edge does not vary.
    df : float
        n - 2 - (columns beside the constant).
    share_p_below_05, share_q_below_05 : float
        Of the edges with r; 0.05 of the former is expected of clean data.
    median_absolute_r : float
    distance_dependence : float
        Spearman's correlation of r with distance; NaN without distances.
    distances : int
        Edges that have one.
    """

    r: "numpy.ndarray"
    p: "numpy.ndarray"
    q: "numpy.ndarray"
    df: float
    share_p_below_05: float
    share_q_below_05: float
    median_absolute_r: float
    distance_dependence: float
    distances: int


class DistanceAnova(NamedTuple):
    """Whether distances between subjects follow a design.

    Attributes
    ----------
    f, df_tested, df_residual : float
    r_squared : float
        The tested columns' share of the sum of squared distances.
    p : float
        By permutation.
    null_f : ndarray of float64
        One for each permutation.
    """

    f: float
    df_tested: float
    df_residual: float
    r_squared: float
    p: float
    null_f: "numpy.ndarray"


def edges(matrices):
    """The edges of networks as rows of numbers, the upper triangle row by row.

        edge number i N - i (i + 1)/2 + j - i - 1 is that of the nodes i < j

    Parameters
    ----------
    matrices : array, subjects x nodes x nodes
        Symmetric within 1e-6, finite off the diagonal; in any unit.

    Returns
    -------
    ndarray of float64, subjects x edges

    Raises
    ------
    ValueError
        For other shapes, and naming subject and edge of what is not finite or not symmetric.

    References
    ----------
    None; `numpy.triu_indices(nodes, 1)` has the same order.

    Examples
    --------
    >>> nodalis.statistics.edges([[[1, 0.1, 0.2], [0.1, 1, 0.3], [0.2, 0.3, 1]]])
    array([[0.1, 0.2, 0.3]])
    """
    return _core.edges(matrices)


def fisher_z(correlations):
    """Fisher's z of correlations.

        z = atanh(r) = log((1 + r)/(1 - r))/2,  r clipped to +-(1 - 1e-7)

    Parameters
    ----------
    correlations : array, subjects x edges or subjects x nodes x nodes
        Within -1 to 1; diagonals are not read.

    Returns
    -------
    FisherZ

    Raises
    ------
    ValueError
        If a value is not finite or lies outside -1 to 1.

    References
    ----------
    Fisher 1915, Biometrika 10:507, doi:10.2307/2331838.

    Examples
    --------
    >>> found = nodalis.statistics.fisher_z([[0.5, 0.0, 1.0]])
    >>> found.z.round(4), found.clipped
    (array([[0.5493, 0.    , 8.4056]]), array([[0, 2]]))
    """
    return FisherZ(*_core.fisher_z(correlations))


def design(formula, table, *, other_columns=()):
    """The design matrix of a formula.

    Written as `group * center(age) + C(site, ref=B) - 1`: a column is a category if any of its values is
    no number, with treatment coding; `C(x)` makes numbers one; `center(x)` subtracts the mean over the
    included rows; `a:b` is an interaction, `a * b` is `a + b + a:b`; `- 1` leaves the intercept out.
    Rows that lack a value leave, and are listed.

        y = M b + noise, M the matrix

    Parameters
    ----------
    formula : str
        The right-hand side of the model.
    table : mapping or data frame
        Names to columns of text or numbers; None, NaN, "" and "n/a" are missing.
    other_columns : list of str
        Columns that must not lack a value either, such as that of blocks.

    Returns
    -------
    Design

    Raises
    ------
    ValueError
        Saying what was found at which character, or which column or level is not there.

    References
    ----------
    Wilkinson and Rogers 1973, Appl Stat 22:392, doi:10.2307/2346786 (the notation).

    Examples
    --------
    >>> table = {"group": ["B", "A", "A", "B"], "age": [20, 30, None, 40]}
    >>> nodalis.statistics.design("age", table).matrix
    array([[ 1., 20.],
           [ 1., 30.],
           [ 1., 40.]])
    >>> nodalis.statistics.design("group", table).columns
    ['(Intercept)', 'group[B]']
    """
    columns = [(str(name), [_text(value) for value in table[name]]) for name in table.keys()]
    return Design(**_core.design(word("formula", formula), columns, list(other_columns)))


def edgewise_glm(
    data,
    design,
    contrast,
    *,
    columns=None,
    sides="each",
    permutations=5000,
    seed=1,
    exchange="automatic",
    blocks=None,
    given=None,
    threads=0,
):
    """A linear model at each edge, with p by permutation and the family-wise error rate by max-T.

        t = sqrt(df) a'e / sqrt(e'e - |Q'e|^2 - (a'e)^2)
        F = (|A'e|^2/k) / ((e'e - |Q'e|^2 - |A'e|^2)/df)

    for the residuals e = y - Q Q'y of the reduced model, or any rearrangement of them (Freedman and
    Lane); Q is a basis of the reduced model, A one of the k contrasts. Signs change where the reduced
    model holds no constant (one sample, pairs).

        p = (b + 1)/(m + 1), or b/M if all M distinct rearrangements were done

    Parameters
    ----------
    data : array, subjects x edges or subjects x nodes x nodes
        Complete; in Fisher z where they are correlations.
    design : Design, array or data frame, subjects x columns
        What `design` made of a formula, or a matrix.
    contrast : str or array
        "NAME = 0.5*a - b", rows separated by ";" for F; or weights of the columns, rows of them for F.
    columns : list of str
        Names of the columns of an array; x0, x1, ... without.
    sides : str
        each or both (two-sided), greater, less.
    permutations : int
        m; 0 for none.
    seed : int
        Of the random numbers.
    exchange : str
        automatic, permutations or signs.
    blocks : list
        One label per subject: subjects are permuted within equal labels only.
    given : array of int, permutations x subjects
        To be used instead of drawn ones: in row p subject i gets the data of subject given[p, i].
    threads : int
        0 is one per processor.

    Returns
    -------
    EdgewiseGlm

    Raises
    ------
    ValueError
        If sizes differ, something is not finite, or the design is collinear (naming its columns).

    References
    ----------
    Freedman and Lane 1983, J Bus Econ Stat 1:292, doi:10.2307/1391660; Winkler et al. 2014, NeuroImage
    92:381, doi:10.1016/j.neuroimage.2014.01.060; Phipson and Smyth 2010, Stat Appl Genet Mol Biol 9:39,
    doi:10.2202/1544-6115.1585.

    Examples
    --------
    >>> data = np.random.default_rng(1).normal(size=(20, 3))
    >>> data[10:, 0] += 3
    >>> groups = nodalis.statistics.design("group", {"group": ["A"] * 10 + ["B"] * 10})
    >>> found = nodalis.statistics.edgewise_glm(data, groups, "B = group[B]", permutations=999)
    >>> found.p_fwe < 0.05
    array([ True, False, False])
    """
    matrix, columns = _matrix_and_columns(design, columns)
    if whole("permutations", permutations) == 0 and given is None:
        found = _core.glm(data, matrix, columns, contrast, word("sides", sides))
        return _model({**found, "rearrangements": 0, "exhaustive": False})
    return _model(
        _core.permutation_test(
            data,
            matrix,
            columns,
            contrast,
            word("sides", sides),
            [],
            whole("permutations", permutations),
            whole("seed", seed),
            word("exchange", exchange),
            _labels(blocks),
            given,
            thread_count(threads),
        )
    )


def nbs(
    data,
    design,
    contrast,
    threshold,
    *,
    columns=None,
    sides="each",
    permutations=5000,
    seed=1,
    exchange="automatic",
    blocks=None,
    given=None,
    threads=0,
):
    """The network-based statistic.

    Edges strictly above the threshold, their connected components, and of each

        extent = number of edges,  intensity = sum of (t - threshold)

    against those of the largest component of each permutation. greater and less make one graph of t or
    -t, both one of |t|, each two graphs with a null distribution in common: the larger side's.

    Parameters
    ----------
    data : array, subjects x edges or subjects x nodes x nodes
        Complete upper triangles; in Fisher z where they are correlations.
    design : Design, array or data frame, subjects x columns
        What `design` made of a formula, or a matrix.
    contrast : str or array
        As in `edgewise_glm`.
    threshold : float
        Of t or F, 0 or above.
    columns : list of str
        Names of the columns of an array; x0, x1, ... without.
    sides : str
        each, both, greater, less.
    permutations, seed, exchange, blocks, given, threads
        As in `edgewise_glm`.

    Returns
    -------
    Nbs

    Raises
    ------
    ValueError
        As `edgewise_glm`, and for data that are no upper triangles.

    References
    ----------
    Zalesky et al. 2010, NeuroImage 53:1197, doi:10.1016/j.neuroimage.2010.06.041.

    Examples
    --------
    >>> data = np.random.default_rng(1).normal(size=(20, 6))  # 4 nodes
    >>> data[10:, :3] += 3  # the edges of node 0
    >>> second = np.repeat([0.0, 1.0], 10)
    >>> found = nodalis.statistics.nbs(
    ...     data, np.column_stack([np.ones(20), second]), [0, 1], 3.0, permutations=999
    ... )
    >>> found.components[0].edges.tolist(), found.components[0].p_extent < 0.05
    ([[0, 1], [0, 2], [0, 3]], True)
    """
    matrix, columns = _matrix_and_columns(design, columns)
    found = _core.permutation_test(
        data,
        matrix,
        columns,
        contrast,
        word("sides", sides),
        [real("threshold", threshold)],
        whole("permutations", permutations),
        whole("seed", seed),
        word("exchange", exchange),
        _labels(blocks),
        given,
        thread_count(threads),
    )
    components, extent, intensity = found["networks"][0]
    return Nbs(
        [Component(*component) for component in components],
        extent,
        intensity,
        float(threshold),
        _model(found),
    )


def icc(sessions):
    """Intraclass correlations: how well single measurements of each edge repeat.

        MSR = k sum_i (x_i. - x..)^2/(n - 1)        MSC = n sum_j (x_.j - x..)^2/(k - 1)
        MSW = sum_ij (x_ij - x_i.)^2/(n (k - 1))
        MSE = sum_ij (x_ij - x_i. - x_.j + x..)^2/((n - 1)(k - 1))
        ICC(1,1) = (MSR - MSW)/(MSR + (k - 1) MSW)
        ICC(2,1) = (MSR - MSE)/(MSR + (k - 1) MSE + k (MSC - MSE)/n)
        ICC(3,1) = (MSR - MSE)/(MSR + (k - 1) MSE)

    Parameters
    ----------
    sessions : sequence of arrays, each subjects x edges or subjects x nodes x nodes
        Of the same subjects in the same order, in one unit.

    Returns
    -------
    Icc
        At most 1; negative values stay; NaN for an edge that is the same throughout.

    Raises
    ------
    ValueError
        For fewer than two sessions or subjects, sessions of different size, or what is not finite.

    References
    ----------
    Shrout and Fleiss 1979, Psychol Bull 86:420, doi:10.1037/0033-2909.86.2.420.

    Examples
    --------
    The table of Shrout and Fleiss, six subjects of four judges:

    >>> judges = np.array(
    ...     [[9, 2, 5, 8], [6, 1, 3, 2], [8, 4, 6, 8], [7, 1, 2, 6], [10, 5, 6, 9], [6, 2, 4, 7]]
    ... )
    >>> [float(x.round(5)[0]) for x in nodalis.statistics.icc([j[:, None] for j in judges.T])]
    [0.16574, 0.28976, 0.71484]
    """
    return Icc(*_core.icc(list(sessions)))


def fingerprint(session_1, session_2, *, permutations=5000, seed=1):
    """Whether subjects are known again from one session to the other by their edges.

        C_ij = Pearson's correlation of the edges of i in session 1 and of j in session 2
        rate = share of subjects whose own C_ii is strictly the largest of its row (or column)
        Idiff = 100 (mean C_ii - mean of C_ij, i != j)

    The null distribution shuffles the labels of session 2.

    Parameters
    ----------
    session_1, session_2 : array, subjects x edges or subjects x nodes x nodes
        Of the same subjects in the same order; in Fisher z where they are correlations.
    permutations : int
        m.
    seed : int
        Of the random numbers.

    Returns
    -------
    Fingerprint

    Raises
    ------
    ValueError
        If the sessions differ in size, or hold what is not finite.

    References
    ----------
    Finn et al. 2015, Nat Neurosci 18:1664, doi:10.1038/nn.4135; Amico and Goni 2018, Sci Rep 8:8254,
    doi:10.1038/s41598-018-25089-1 (Idiff).

    Examples
    --------
    >>> rng = np.random.default_rng(1)
    >>> subjects = rng.normal(size=(10, 45))
    >>> again = subjects + 0.1 * rng.normal(size=(10, 45))
    >>> found = nodalis.statistics.fingerprint(subjects, again, permutations=999)
    >>> found.rate_1_to_2, found.p_1_to_2
    (1.0, 0.001)
    """
    return Fingerprint(
        *_core.fingerprint(
            session_1, session_2, whole("permutations", permutations), whole("seed", seed)
        )
    )


def qcfc(data, mean_fd, *, covariates=None, columns=None, distances=None):
    """How much of each edge follows the subjects' motion.

        r = partial correlation of mean FD and the edge, given a constant and the covariates
        t = r sqrt(df/(1 - r^2)),  df = n - 2 - (columns beside the constant)

    Parameters
    ----------
    data : array, subjects x edges or subjects x nodes x nodes
        In Fisher z where they are correlations.
    mean_fd : array, subjects
        Mean framewise displacement in mm, of all volumes before censoring.
    covariates : Design, array or data frame, subjects x columns
        The design without motion; a constant is added if they do not span it.
    columns : list of str
        Names of the columns of an array; x0, x1, ... without.
    distances : array, edges or nodes x nodes
        Of each edge's nodes in mm; NaN where unknown.

    Returns
    -------
    QcFc

    Raises
    ------
    ValueError
        If sizes differ, something is not finite, or no degree of freedom is left.

    References
    ----------
    Ciric et al. 2017, NeuroImage 154:174, doi:10.1016/j.neuroimage.2017.03.020.

    Examples
    --------
    >>> rng = np.random.default_rng(1)
    >>> motion = rng.uniform(0.05, 0.4, 30)
    >>> edges = rng.normal(size=(30, 10))
    >>> edges[:, 0] += 10 * motion
    >>> found = nodalis.statistics.qcfc(edges, motion)
    >>> found.df, int(abs(found.r).argmax())
    (28.0, 0)
    """
    names = []
    if covariates is not None:
        covariates, names = _matrix_and_columns(covariates, columns, "covariates")
    return QcFc(*_core.qcfc(data, mean_fd, covariates, names, distances))


def distance_anova(
    distances,
    design,
    contrast,
    *,
    columns=None,
    permutations=5000,
    seed=1,
    blocks=None,
    given=None,
    threads=0,
):
    """Whether distances between subjects follow a design, distance-based analysis of variance.

        G = -J D^2 J/2, J = I - 11'/N, D^2 the squared distances
        F = (tr(A'GA)/k) / (tr((I - H)G)/(N - p))

    with A a basis of the contrast and H the projection on the design. F has no tabulated distribution:
    the only p is that of permutations. Groups of unequal spread alone can reject.

    Parameters
    ----------
    distances : array, subjects x subjects
        Symmetric, 0 on the diagonal, in any unit; such as those of `nodalis.between_spectra`.
    design : Design, array or data frame, subjects x columns
        What `design` made of a formula, or a matrix. Without the tested columns it must hold the
        constant.
    contrast : str or array
        As in `edgewise_glm`.
    columns : list of str
        Names of the columns of an array; x0, x1, ... without.
    permutations, seed, blocks, given, threads
        As in `edgewise_glm`.

    Returns
    -------
    DistanceAnova

    Raises
    ------
    ValueError
        If the matrix is not one of distances, or not of the design's subjects.

    References
    ----------
    Anderson 2001, Austral Ecol 26:32, doi:10.1111/j.1442-9993.2001.01070.pp.x; McArdle and Anderson
    2001, Ecology 82:290, doi:10.1890/0012-9658(2001)082[0290:FMMTCD]2.0.CO;2.

    Examples
    --------
    >>> place = np.concatenate([np.arange(8.0), 20 + np.arange(8.0)])
    >>> groups = np.column_stack([np.ones(16), np.repeat([0.0, 1.0], 8)])
    >>> found = nodalis.statistics.distance_anova(
    ...     abs(place[:, None] - place), groups, [0, 1], permutations=999
    ... )
    >>> round(found.f, 6), found.df_residual, found.p < 0.05  # that of an analysis of variance
    (266.666667, 14.0, True)
    """
    matrix, columns = _matrix_and_columns(design, columns)
    return DistanceAnova(
        *_core.distance_anova(
            distances,
            matrix,
            columns,
            contrast,
            whole("permutations", permutations),
            whole("seed", seed),
            _labels(blocks),
            given,
            thread_count(threads),
        )
    )


def _text(value):
    """A cell of a table as text; numbers keep all their digits."""
    text = str(value)
    return "" if text in ("None", "nan", "NaT", "<NA>") else text


def _labels(blocks):
    return [] if blocks is None else [str(block) for block in blocks]


def _matrix_and_columns(design, columns, name="design"):
    if isinstance(design, Design):
        if columns is not None:
            raise ValueError("columns are given, but a design has its own")
        return design.matrix, design.columns
    if columns is None:
        if np.ndim(design) != 2:
            raise ValueError(f"{name} has shape {np.shape(design)}: expected subjects x columns")
        columns = column_names(design)
    return design, list(columns)


def _model(found):
    return EdgewiseGlm(
        found["estimate"],
        found["statistic"],
        found["p"],
        found.get("p_perm"),
        found.get("p_fwe"),
        found["q"],
        found["df"],
        found["tested"],
        found["constant_edges"],
        found.get("null_maximum"),
        found["rearrangements"],
        found["exhaustive"],
    )
