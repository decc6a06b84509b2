// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include <Eigen/Core>

#include "statistics/formula.h"
#include "statistics/table.h"

namespace statistics
{

/// A value that a row lacks.
struct MissingValue {
    Index row = 0;
    std::string column;
};

/// A column that was taken as a category.
struct Category {
    std::string column;
    /// In byte order, the reference level first.
    std::vector<std::string> levels;
    /// How many of the included rows have each.
    std::vector<Index> counts;
};

/// A design matrix with names.
struct Design {
    /// Included rows x columns.
    Eigen::MatrixXd matrix;
    std::vector<std::string> columns;
    /// The rows of the table that are included, by number from 0, ascending.
    std::vector<Index> rows;
    /// What the rows that left lack.
    std::vector<MissingValue> missing;
    std::vector<Category> categories;
};

/// The design matrix of a formula.
///
/// Rows that lack a value of a column in the formula, or of one in `other_columns` (such as that of
/// blocks), leave first, and are listed.
///
/// Columns and their names:
/// - `(Intercept)`: ones.
/// - A number: its values, under its name. `center(x)`: less its mean over the included rows, under
///   the name `center(x)`. Nothing is centred by itself.
/// - A category: a column of 0 and 1 for each level but the first, `x[level]`, also for `C(x)`
///   (treatment coding). Levels are in byte order, `ref=` moves one to the front. A column is a
///   category if any of its values (of all rows) is no number.
/// - An interaction: the products of its factors' columns, `a[2]:b`; the first factor varies
/// fastest.
/// - Where the columns before do not hold what a category's first level stands for, it gets its
///   column as well: `0 + group` has one for each level, and so has `group:age` without `age`.
///
/// \throws Error for what `read_formula` refuses, an unknown column, a level that is not there, a
///         category in `center`, a category with one level or with a level (or a cell of an
///         interaction) of a single subject, or when no row is left.
Design make_design(const std::string &formula, const Table &table,
                   const std::vector<std::string> &other_columns = {});

} // namespace statistics
