// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QString>
#include <QStringList>

namespace corvane
{

/// Time courses of nodes from a table.
struct SeriesTable {
    QStringList names;      ///< one for each node
    Eigen::MatrixXf values; ///< nodes x volumes; NaN where a cell holds none
    QStringList notes;      ///< what was skipped or is missing, one line for each kind
};

/// Reads a table with a column for each node, their names in the first line, and a line for each
/// volume; splitCells() tells what may stand between cells. Numbers are rounded to single
/// precision, in which everything is computed. "n/a", "nan", "NA" and empty cells are missing
/// values. A first column without a name counts the volumes, as pandas and R write it, and is
/// skipped.
///
/// Throws InputError, naming row and column as they are counted in the file, from 1: for a first
/// line of numbers, no line behind it, rows of unequal length, and a cell that is neither a number
/// of single precision nor missing.
SeriesTable readSeriesTable(const QString &path);

} // namespace corvane
