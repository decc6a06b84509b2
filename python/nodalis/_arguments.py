# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks of arguments that are no arrays, before they reach the extension module."""

import operator

import numpy as np


def whole(name, value, most=2**63 - 1):
    """A whole number from 0 on, also one of numpy."""
    try:
        number = operator.index(value)
    except TypeError:
        raise TypeError(f"{name} is {value!r}: expected a whole number") from None
    if not 0 <= number <= most:
        raise ValueError(f"{name} is {number}: expected 0 or more" + f", {most} at most" * (number > 0))
    return number


def thread_count(threads):
    """How many threads are asked for; 0 is one per processor."""
    return whole("threads", threads, 2**31 - 1)


def real(name, value):
    """A number, also one of numpy."""
    if isinstance(value, (str, bytes)):
        raise TypeError(f"{name} is {value!r}: expected a number")
    try:
        return float(value)
    except (TypeError, ValueError):
        raise TypeError(f"{name} is a {type(value).__name__}: expected a number") from None


def word(name, value):
    """A text that chooses something."""
    if not isinstance(value, str):
        raise TypeError(f"{name} is {value!r}: expected a text")
    return value


def column_names(table):
    """The names of a data frame's columns; x0, x1, ... of an array's."""
    names = getattr(table, "columns", None)
    if names is not None:
        return [str(name) for name in names]
    shape = np.shape(table)
    return [f"x{column}" for column in range(shape[1] if len(shape) == 2 else 0)]


def optional(check, name, value):
    """The same where None is allowed."""
    return None if value is None else check(name, value)
