// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/graph_table.h"

#include "dataset/counted.h"
#include "host/files/cell_rows.h"
#include "host/files/input_error.h"
#include "host/files/input_file.h"
#include "host/files/limits.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace corvane
{

namespace
{

/// The numbers that a table may hold.
struct Numbers {
    std::optional<double> (*of)(Cell cell);
    const char *name;
};

/// Those that fit into single precision; numbers below the smallest float are 0 there, not out of
/// range.
std::optional<double> singleNumber(Cell cell)
{
    const std::optional<double> number = numberIn(cell);
    const bool fits =
        number && (std::isinf(*number) || !(std::abs(*number) > std::numeric_limits<float>::max()));
    return fits ? number : std::nullopt;
}

std::optional<double> numberOrMissing(Cell cell)
{
    return cell == "n/a" ? std::optional(std::numeric_limits<double>::quiet_NaN()) : numberIn(cell);
}

constexpr Numbers singleNumbers{singleNumber, "a number of single precision"};
constexpr Numbers numbersOrMissing{numberOrMissing, "a number or n/a"};

/// A table of which it is known where its names stand.
class Table
{
public:
    Table(std::vector<CellRow> rows, const QString &path, const Numbers &numbers)
        : m_path(path), m_numbers(numbers), m_rows(std::move(rows))
    {
        if (m_rows.empty())
            throw InputError(m_path, QStringLiteral("row 1, column 1"),
                             QStringLiteral("an empty file"), QStringLiteral("a square matrix"));
        m_width = m_rows.back().cells.size();
        requireEqualRows();
        findNames();
        requireSquare();
    }

    MatrixTable matrix() const { return {names(), values(), {}}; }

private:
    bool isText(Cell cell) const { return !cell.empty() && !m_numbers.of(cell); }
    bool areTexts(const std::vector<Cell> &cells) const
    {
        return !cells.empty() &&
               std::all_of(cells.begin(), cells.end(), [this](Cell cell) { return isText(cell); });
    }

    /// A header above an index may lack the corner.
    bool lacksCorner() const { return m_rows.front().cells.size() + 1 == m_width; }
    std::size_t size() const { return m_rows.size() - m_firstRow; }

    void requireEqualRows() const
    {
        const bool headerMayBeShort = lacksCorner() && areTexts(m_rows.front().cells);
        for (std::size_t r = headerMayBeShort ? 1 : 0; r < m_rows.size(); ++r) {
            const std::size_t found = m_rows[r].cells.size();
            if (found != m_width)
                throw InputError(
                    m_path, placeOf(m_rows[r], std::min(found, m_width)),
                    counted(found, "cell") + QStringLiteral(" in this row"),
                    QStringLiteral("%1 as in row %2").arg(m_width).arg(m_rows.back().line));
        }
    }

    void findNames()
    {
        const std::vector<Cell> &first = m_rows.front().cells;
        // An empty corner or "Node" above as many rows as there are columns beside it can be
        // nothing else, whatever the names look like.
        const bool isCorner = first.front().empty() || first.front() == "Node";
        if (lacksCorner() || (isCorner && m_rows.size() == m_width)) {
            m_firstRow = 1;
            m_firstColumn = 1;
            return;
        }
        const std::vector<Cell> others(first.begin() + 1, first.end());
        const bool isNumbered = first.front().empty() && areCounters(others);
        const bool isNamed = !m_numbers.of(first.front()) && (others.empty() || areTexts(others));
        const bool mayBeHeader = m_rows.size() > 1 && (isNamed || isNumbered);
        m_firstRow = mayBeHeader ? 1 : 0;

        std::vector<Cell> column;
        for (std::size_t r = m_firstRow; r < m_rows.size(); ++r)
            column.push_back(m_rows[r].cells.front());
        const bool isIndex =
            areTexts(column) || (m_firstRow == 1 && m_width == size() + 1 && areCounters(column));
        m_firstColumn = isIndex && m_width > 1 ? 1 : 0;
    }

    void requireSquare() const
    {
        const std::size_t columns = m_width - m_firstColumn;
        if (columns != size())
            throw InputError(m_path, placeOf(m_rows.back(), m_width - 1),
                             QStringLiteral("the end of a matrix of %1 rows and %2 columns")
                                 .arg(size())
                                 .arg(columns),
                             QStringLiteral("as many rows as columns"));
    }

    QStringList names() const
    {
        QStringList header;
        if (m_firstRow == 1) {
            const CellRow &row = m_rows.front();
            for (std::size_t c = lacksCorner() ? 0 : m_firstColumn; c < row.cells.size(); ++c)
                header.append(nameIn(row.cells[c], m_path, placeOf(row, c)));
        }
        QStringList index;
        for (std::size_t r = m_firstRow; m_firstColumn == 1 && r < m_rows.size(); ++r)
            index.append(nameIn(m_rows[r].cells.front(), m_path, placeOf(m_rows[r], 0)));
        if (!header.isEmpty() && !index.isEmpty())
            requireAgreement(header, index);
        return header.isEmpty() ? index : header;
    }

    /// An index that only counts beside a header of names says nothing about the order.
    void requireAgreement(const QStringList &header, const QStringList &index) const
    {
        for (int n = 0; n < header.size(); ++n) {
            const CellRow &row = m_rows[m_firstRow + static_cast<std::size_t>(n)];
            if (header[n] != index[n] && isText(row.cells.front()))
                throw InputError(m_path, placeOf(row, 0), quoted(index[n]),
                                 QStringLiteral("%1 as in the header").arg(quoted(header[n])));
        }
    }

    Eigen::MatrixXd values() const
    {
        const auto n = static_cast<Eigen::Index>(size());
        Eigen::MatrixXd matrix(n, n);
        for (Eigen::Index i = 0; i < n; ++i) {
            const CellRow &row = m_rows[m_firstRow + static_cast<std::size_t>(i)];
            for (Eigen::Index j = 0; j < n; ++j) {
                const std::size_t column = m_firstColumn + static_cast<std::size_t>(j);
                const std::optional<double> number = m_numbers.of(row.cells[column]);
                if (!number)
                    throw InputError(m_path, placeOf(row, column), found(row.cells[column]),
                                     expected(row.cells[column]));
                matrix(i, j) = *number;
            }
        }
        return matrix;
    }

    QString expected(Cell cell) const
    {
        const QString number = QLatin1String(m_numbers.name);
        return cell.find_first_of("; ") == Cell::npos
                   ? number
                   : number + QStringLiteral(", and commas or tabs between numbers");
    }

    static QString found(Cell cell)
    {
        return cell.empty() ? QStringLiteral("an empty cell") : quoted(bytesOf(cell));
    }

    QString m_path;
    const Numbers &m_numbers;
    std::vector<CellRow> m_rows;
    std::size_t m_width = 0;
    std::size_t m_firstRow = 0;    ///< of the matrix: 1 below a header
    std::size_t m_firstColumn = 0; ///< 1 beside an index
};

MatrixTable parseTable(const QByteArray &bytes, const QString &path, const Numbers &numbers)
{
    CellTable cells = splitCells(bytes, path);
    MatrixTable table = Table(std::move(cells.rows), path, numbers).matrix();
    table.notes = cells.notes;
    return table;
}

} // namespace

GraphTable parseGraphTable(const QByteArray &bytes, const QString &path)
{
    const MatrixTable table = parseTable(bytes, path, singleNumbers);
    return {table.names, table.values.cast<float>(), table.notes};
}

GraphTable readGraphTable(const QString &path)
{
    const InputFile file(path);
    return parseGraphTable(file.all(largestText), path);
}

MatrixTable readMatrixTable(const QString &path)
{
    const InputFile file(path);
    return parseTable(file.all(largestText), path, numbersOrMissing);
}

} // namespace corvane
