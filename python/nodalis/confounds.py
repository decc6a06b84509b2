# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads what a preprocessing pipeline tells of each volume: a table, and the JSON beside it."""

import json
import os
import pathlib
from typing import NamedTuple

import numpy as np


class Component(NamedTuple):
    """What the JSON beside a table says of a component.

    Attributes
    ----------
    name : str
        Of its column.
    method : str
        "aCompCor", "tCompCor".
    mask : str
        "combined", "CSF", "WM"; empty without one.
    retained : bool
        Whether the pipeline kept it.
    """

    name: str
    method: str
    mask: str
    retained: bool


class ConfoundsTable(NamedTuple):
    """One row per volume of a run.

    Attributes
    ----------
    names : list of str
        Of the columns; p1, p2, ... where the file has no header.
    values : ndarray of float64, volumes x columns
        NaN where the file has n/a. Translations are in mm, rotations in rad.
    components : list of Component or None
        None without a JSON.
    """

    names: list
    values: "numpy.ndarray"
    components: "list | None"


def read_confounds(path):
    """Reads a table of confounds, and the JSON beside it if there is one.

    Either tab-separated text with names in the first line and "n/a" where a value is missing, and
    beside it, under the same name with the ending .json, what is known of each component; or motion
    parameters of other packages: numbers with blanks or tabs between them, no names. Lines that begin
    with "#" above the table, or among numbers without names, count as nothing.

    Parameters
    ----------
    path : str or path

    Returns
    -------
    ConfoundsTable

    Raises
    ------
    ValueError
        Naming file, line and column of what is no number, and lines of other lengths.
    OSError
        If a file cannot be read.

    References
    ----------
    The columns are those of fMRIPrep, Esteban et al. 2019, Nat Methods 16:111,
    doi:10.1038/s41592-018-0235-4.

    Examples
    --------
    >>> _ = (folder / "confounds.tsv").write_text("csf\\tcsf_derivative1\\n1.5\\tn/a\\n2.5\\t1\\n")
    >>> table = nodalis.signals.read_confounds(folder / "confounds.tsv")
    >>> table.names
    ['csf', 'csf_derivative1']
    >>> table.values
    array([[1.5, nan],
           [2.5, 1. ]])
    """
    path = pathlib.Path(path)
    lines = [
        (number, line)
        for number, line in enumerate(path.read_text(encoding="utf-8-sig").splitlines(), 1)
        if line.strip()
    ]
    first = next((i for i, (_, line) in enumerate(lines) if not _is_comment(line)), None)
    if first is None:
        raise ValueError(f"{path}: no table is in it: expected a line per volume")
    if all(_number(word) is not None for word in lines[first][1].split()):
        return _numbers(path, [(n, line) for n, line in lines if not _is_comment(line)])
    return _columns(path, lines[first], lines[first + 1 :])


def as_table(confounds):
    """A table of confounds from a path, a table, a mapping or data frame, or a structured array."""
    if isinstance(confounds, ConfoundsTable):
        return confounds
    if isinstance(confounds, (str, os.PathLike)):
        return read_confounds(confounds)
    if hasattr(confounds, "keys"):  # a dictionary, or a data frame
        names = [str(name) for name in confounds.keys()]
        columns = [np.asarray(confounds[name], dtype=float) for name in confounds.keys()]
    elif getattr(getattr(confounds, "dtype", None), "names", None):
        names = list(confounds.dtype.names)
        columns = [np.asarray(confounds[name], dtype=float) for name in names]
    else:
        raise ValueError(
            f"confounds is {type(confounds).__name__}: expected a path, a table of read_confounds, "
            "a mapping of names to columns, or a data frame"
        )
    for name, column in zip(names, columns):
        if column.ndim != 1 or len(column) != len(columns[0]):
            raise ValueError(
                f"column {name} has shape {column.shape}: expected ({len(columns[0])},), as the first"
            )
    values = np.column_stack(columns) if columns else np.empty((0, 0))
    return ConfoundsTable(names, values, None)


def _is_comment(line):
    return line.lstrip().startswith("#")


def _number(text):
    """The finite number that a text is, or None."""
    try:
        value = float(text)
    except ValueError:
        return None
    return value if np.isfinite(value) and "_" not in text else None


def _numbers(path, lines):
    rows = []
    for number, line in lines:
        words = line.split()
        row = [_number(word) for word in words]
        if None in row:
            raise ValueError(
                f"{path}, line {number}, column {row.index(None) + 1}: "
                f'"{words[row.index(None)]}": expected a number'
            )
        if rows and len(row) != len(rows[0]):
            raise ValueError(
                f"{path}, line {number}: {len(row)} numbers: expected {len(rows[0])}, as before"
            )
        rows.append(row)
    values = np.array(rows)
    return ConfoundsTable([f"p{column + 1}" for column in range(values.shape[1])], values, None)


def _columns(path, header, lines):
    names = _cells(header[1])
    values = np.empty((len(lines), len(names)))
    for row, (number, line) in enumerate(lines):
        cells = _cells(line)
        if len(cells) != len(names):
            raise ValueError(
                f"{path}, line {number}: {len(cells)} cells: expected {len(names)}, one per column"
            )
        for column, cell in enumerate(cells):
            value = np.nan if cell == "n/a" else _number(cell)
            if value is None:
                raise ValueError(
                    f'{path}, line {number}, {names[column]}: "{cell}": expected a number or "n/a"'
                )
            values[row, column] = value
    return ConfoundsTable(names, values, _components(path.with_suffix(".json")))


def _cells(line):
    return [cell.strip().strip('"') for cell in line.split("\t")]


def _components(path):
    if not path.exists():
        return None
    try:
        facts = json.loads(path.read_text(encoding="utf-8"))
    except json.JSONDecodeError as error:
        raise ValueError(f"{path}: {error}: expected a JSON object") from error
    if not isinstance(facts, dict):
        raise ValueError(f"{path}: no object: expected a JSON object")
    return [
        Component(
            name,
            fact["Method"],
            fact.get("Mask") or "",
            fact.get("Retained") is not False,
        )
        for name, fact in facts.items()
        if isinstance(fact, dict) and fact.get("Method")
    ]
