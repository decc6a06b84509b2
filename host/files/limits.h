// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <cmath>
#include <limits>

/// @file
/// What is too large, or out of its range, and how messages say it.

namespace corvane
{

/// Samples, voxels and volumes are counted as `int`.
constexpr int largestCount = std::numeric_limits<int>::max();

/// Most bytes of a text that is read as a whole, and of a table whose cells are kept one by one.
constexpr qint64 largestText = qint64(1) << 30;
constexpr qint64 largestTable = qint64(1) << 28;

/// Most cells of a row, rows, and cells of a table of numbers: far more than nodes and volumes can
/// be, and what is read of a file of separators alone still fits into the memory of a machine.
constexpr qint64 mostColumns = 100'000;
constexpr qint64 mostRows = 10'000'000;
constexpr qint64 mostCells = qint64(1) << 28;

/// Throws InputError "PATH: PLACE: found FOUND UNIT, expected at most MOST" above that number.
void requireAtMost(qint64 found, qint64 most, const QString &unit, const QString &path,
                   const QString &place);

/// The whole numbers that a value may be.
struct WholeRange {
    qint64 lowest;
    qint64 highest;

    /// Whether the value is one of them; not a number is none.
    bool holds(double value) const
    {
        return value >= static_cast<double>(lowest) && value <= static_cast<double>(highest) &&
               value == std::floor(value);
    }
    /// "a whole number from 0 to 255"
    QString text() const;
};

} // namespace corvane
