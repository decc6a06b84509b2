// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <string_view>
#include <vector>

/// @file
/// Text tables of any program as rows of cells: which sign parts them, quotation marks, comments.

namespace corvane
{

/// A cell without its quotation marks and the blanks around it; a view of the file's bytes.
using Cell = std::string_view;

struct CellRow {
    int line; ///< in the file, from 1
    std::vector<Cell> cells;
};

struct CellTable {
    std::vector<CellRow> rows;
    QStringList notes; ///< what was skipped, one line for each kind
};

/// The rows of a table. Between cells stand tabs, commas or semicolons, whichever of these, in this
/// order, the first line holds, or else blanks. Cells may stand in double quotation marks
/// (RFC 4180); blanks around them, empty lines and comments (lines that begin with "#") count as
/// nothing. `bytes` must outlive the cells. Throws InputError for quotation marks that do not fit,
/// and for more columns, rows or cells than limits.h allows; `path` is for messages only.
CellTable splitCells(const QByteArray &bytes, const QString &path);

/// "row 3, column 2", counted in the file from 1.
QString placeOf(const CellRow &row, std::size_t column);

/// The bytes of a cell, as they stand there.
QByteArray bytesOf(Cell cell);

/// A number, or "nan", "inf" and "-inf" in any case of letters; unset for anything else.
std::optional<double> numberIn(Cell cell);

/// Whether the cells are whole numbers that name things: all different.
bool areCounters(const std::vector<Cell> &cells);

/// The cell at that place as a name. Throws InputError when it is none.
QString nameIn(Cell cell, const QString &path, const QString &place);

} // namespace corvane
