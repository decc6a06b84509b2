// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QByteArray>
#include <QString>
#include <QStringList>

namespace corvane
{

/// A square matrix from a table, and the names of its nodes.
struct GraphTable {
    QStringList names; ///< one per row, or none at all
    Eigen::MatrixXf weights;
    QStringList notes; ///< what was skipped, one line for each kind
};

/// The same in double precision, NaN where a cell holds no number.
struct MatrixTable {
    QStringList names;
    Eigen::MatrixXd values;
    QStringList notes;
};

/// Reads a square matrix from text. Between its cells stand tabs, commas or semicolons, whichever
/// of these, in this order, the first line holds, or else blanks. A header row of names, an index
/// column of names, or both may stand around it; the corner above an index may be empty, hold a
/// text or be missing. Names are texts; where the corner is empty they may also be whole numbers.
/// Cells may stand in double quotation marks (RFC 4180); blanks around them, empty lines and
/// comments (lines that begin with "#") count as nothing. "nan", "inf" and "-inf" are numbers.
///
/// Throws InputError, naming row and column as they are counted in the file, from 1: for an empty
/// file, rows of unequal length, numbers of rows and columns that differ, a cell that is no number
/// of single precision, and names that differ between header and index.
GraphTable readGraphTable(const QString &path);

/// The same from the bytes of a file, whose path is for messages only.
GraphTable parseGraphTable(const QByteArray &bytes, const QString &path);

/// Reads such a table with numbers of double precision and "n/a" among them.
MatrixTable readMatrixTable(const QString &path);

} // namespace corvane
