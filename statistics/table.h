// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "statistics/edges.h"

namespace statistics
{

/// A column of a table as it stands in its file.
struct Column {
    std::string name;
    std::vector<std::string> values;
};

/// A table in memory: columns of text, one value per row. All columns are equally long.
struct Table {
    std::vector<Column> columns;

    Index rows() const;

    /// \throws Error naming the columns there are, if none or several have that name.
    const Column &column(const std::string &name) const;

    /// The given rows, in that order.
    Table with_rows(const std::vector<Index> &rows) const;
};

/// Whether a value is missing: empty, `n/a`, `na` or `nan` in any case of letters, with or without
/// blanks around.
bool is_missing(const std::string &value);

/// \throws Error if the columns differ in length or one has no name.
void require_rectangular(const Table &table);

} // namespace statistics
