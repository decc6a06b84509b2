// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/series_table.h"

#include "dataset/counted.h"
#include "host/files/cell_rows.h"
#include "host/files/input_error.h"
#include "host/files/input_file.h"
#include "host/files/limits.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

namespace corvane
{

namespace
{

bool isMissing(Cell cell)
{
    return cell.empty() || cell == "n/a" || cell == "nan" || cell == "NaN" || cell == "NA";
}

/// The nearest number of single precision; those too small for one are 0.
std::optional<float> singleIn(Cell cell)
{
    float value = 0.0F;
    const char *const end = cell.data() + cell.size();
    const auto result = std::from_chars(cell.data(), end, value);
    if (result.ptr != end)
        return std::nullopt;
    if (result.ec == std::errc::result_out_of_range && std::abs(numberIn(cell).value_or(1)) < 1)
        return 0.0F;
    return result.ec == std::errc() ? std::optional(value) : std::nullopt;
}

class Series
{
public:
    Series(CellTable table, const QString &path) : m_path(path), m_table(std::move(table))
    {
        if (m_table.rows.empty())
            throw InputError(m_path, QStringLiteral("row 1, column 1"),
                             QStringLiteral("an empty file"),
                             QStringLiteral("the names of the nodes, and a line for each volume"));
        requireNames();
        if (m_table.rows.size() < 2)
            throw InputError(m_path, placeOf(header(), 0), QStringLiteral("no line behind it"),
                             QStringLiteral("a line for each volume"));
        // A header above numbered lines may have no cell above the numbers, or an empty one.
        const bool isShort = header().cells.size() + 1 == m_table.rows[1].cells.size();
        m_width = header().cells.size() + (isShort ? 1 : 0);
        m_first = isShort || (header().cells.front().empty() && m_width > 1) ? 1 : 0;
    }

    SeriesTable read()
    {
        SeriesTable series{names(), values(), m_table.notes};
        if (m_first == 1)
            series.notes += QStringLiteral("%1: the first column has no name and is skipped")
                                .arg(printable(m_path, 4096));
        noteMissing(series);
        return series;
    }

private:
    const CellRow &header() const { return m_table.rows.front(); }

    void requireNames() const
    {
        std::vector<Cell> cells = header().cells;
        if (cells.front().empty())
            cells.erase(cells.begin());
        const bool areNumbers = std::all_of(cells.begin(), cells.end(), [](Cell cell) {
            return isMissing(cell) || numberIn(cell);
        });
        if (areNumbers && (cells.empty() || !areCounters(cells)))
            throw InputError(
                m_path, placeOf(header(), 0), QStringLiteral("a line of numbers"),
                QStringLiteral("the names of the nodes, above a line for each volume"));
    }

    QStringList names() const
    {
        QStringList names;
        const std::size_t first = header().cells.size() == m_width ? m_first : 0;
        for (std::size_t column = first; column < header().cells.size(); ++column)
            names += nameIn(header().cells[column], m_path, placeOf(header(), column));
        return names;
    }

    Eigen::MatrixXf values() const
    {
        Eigen::MatrixXf values(Eigen::Index(m_width - m_first),
                               Eigen::Index(m_table.rows.size() - 1));
        for (Eigen::Index volume = 0; volume < values.cols(); ++volume) {
            const CellRow &row = m_table.rows[std::size_t(volume) + 1];
            requireWidth(row);
            for (Eigen::Index node = 0; node < values.rows(); ++node)
                values(node, volume) = value(row, m_first + std::size_t(node));
        }
        return values;
    }

    void requireWidth(const CellRow &row) const
    {
        const std::size_t found = row.cells.size();
        if (found != m_width)
            throw InputError(m_path, placeOf(row, std::min(found, m_width)),
                             counted(qint64(found), "cell") + QStringLiteral(" in this row"),
                             QStringLiteral("%1, one for each column").arg(m_width));
    }

    float value(const CellRow &row, std::size_t column) const
    {
        const Cell cell = row.cells[column];
        if (isMissing(cell))
            return std::numeric_limits<float>::quiet_NaN();
        const std::optional<float> number = singleIn(cell);
        if (!number)
            throw InputError(m_path, placeOf(row, column), quoted(bytesOf(cell)),
                             QStringLiteral("a number of single precision, or n/a"));
        return *number;
    }

    void noteMissing(SeriesTable &series) const
    {
        const auto missing = series.values.array().isNaN();
        if (!missing.any())
            return;
        QStringList nodes;
        for (Eigen::Index node = 0; node < series.values.rows(); ++node)
            if (missing.row(node).any())
                nodes += QStringLiteral("%1 in %2")
                             .arg(counted(missing.row(node).count(), "volume"),
                                  quoted(series.names[int(node)]));
        series.notes += QStringLiteral("%1: values are missing (n/a): %2")
                            .arg(printable(m_path, 4096), nodes.join(QStringLiteral(", ")));
    }

    QString m_path;
    CellTable m_table;
    std::size_t m_width = 0;
    std::size_t m_first = 0; ///< column of the first node
};

} // namespace

SeriesTable readSeriesTable(const QString &path)
{
    const InputFile file(path);
    const QByteArray bytes = file.all(largestText);
    return Series(splitCells(bytes, path), path).read();
}

} // namespace corvane
