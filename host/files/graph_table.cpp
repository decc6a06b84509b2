// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/graph_table.h"

#include "dataset/counted.h"
#include "host/files/input_error.h"
#include "host/files/input_file.h"
#include "host/files/limits.h"
#include "host/files/text_check.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

namespace corvane
{

namespace
{

/// A cell without its quotation marks and the blanks around it; a view of the file's bytes.
using Cell = std::string_view;

struct Row {
    int line; ///< in the file, from 1
    std::vector<Cell> cells;
};

QByteArray bytesOf(Cell cell)
{
    return {cell.data(), static_cast<int>(cell.size())};
}

QString place(const Row &row, std::size_t column)
{
    return QStringLiteral("row %1, column %2").arg(row.line).arg(column + 1);
}

// ---- from bytes to cells

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == Cell::npos ? std::string_view()
                               : text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

/// A line up to its line feed, as far as it matters before its cells are known.
struct Line {
    std::string_view text;
    const char *next; ///< behind its line feed

    bool isComment() const { return !isEmpty() && trimmed(text).front() == '#'; }
    bool isContent() const { return !isEmpty() && trimmed(text).front() != '#'; }

private:
    bool isEmpty() const { return trimmed(text).empty(); }
};

Line lineAt(const char *start, const char *end)
{
    const char *const stop = std::find(start, end, '\n');
    return {std::string_view(start, static_cast<std::size_t>(stop - start)),
            stop == end ? end : stop + 1};
}

/// Whether a sign stands in a line outside quotation marks.
bool holds(std::string_view line, char sign)
{
    bool quoted = false;
    for (const char c : line) {
        quoted = quoted != (c == '"');
        if (c == sign && !quoted)
            return true;
    }
    return false;
}

/// What parts the cells: of tab, comma and semicolon the first that the first line holds; else
/// blanks, if the second line has some as well (one alone may hold a name); else a comma.
char separator(const char *start, const char *end)
{
    std::vector<Line> lines;
    while (start != end && lines.size() < 2) {
        const Line line = lineAt(start, end);
        if (line.isContent())
            lines.push_back(line);
        start = line.next;
    }
    if (lines.empty())
        return ',';
    for (const char sign : {'\t', ',', ';'})
        if (holds(lines.front().text, sign))
            return sign;
    const bool allHaveBlanks = std::all_of(lines.begin(), lines.end(), [](const Line &line) {
        return holds(trimmed(line.text), ' ');
    });
    return allHaveBlanks ? ' ' : ',';
}

class Reader
{
public:
    Reader(const QByteArray &bytes, const QString &path)
        : m_path(path), m_next(bytes.constData()), m_end(bytes.constData() + bytes.size())
    {
        constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";
        if (bytes.startsWith(byteOrderMark.data()))
            m_next += byteOrderMark.size();
        m_separator = separator(m_next, m_end);
    }

    std::vector<Row> rows()
    {
        std::vector<Row> rows;
        while (m_next != m_end) {
            const Line line = lineAt(m_next, m_end);
            if (line.isContent()) {
                rows.push_back(nextRow());
                continue;
            }
            m_comments += line.isComment() ? 1 : 0;
            m_next = line.next;
            m_line += 1;
        }
        return rows;
    }

    /// Lines that were skipped so far because they are comments.
    int comments() const { return m_comments; }

private:
    /// Blanks around cells that another sign parts, or those that part them.
    bool isBlank(char c) const
    {
        return c == '\r' || c == ' ' || (c == '\t' && m_separator != '\t');
    }
    bool atLineEnd() const { return m_next == m_end || *m_next == '\n'; }
    bool atCellEnd() const
    {
        return atLineEnd() || (m_separator == ' ' ? isBlank(*m_next) : *m_next == m_separator);
    }
    void skipBlanks()
    {
        while (!atLineEnd() && isBlank(*m_next))
            ++m_next;
    }

    Row nextRow()
    {
        Row row{m_line, {}};
        if (m_separator == ' ')
            skipBlanks();
        bool more = true;
        while (more) {
            row.cells.push_back(nextCell(row));
            more = passSeparator();
        }
        if (m_next != m_end)
            ++m_next;
        m_line += 1;
        return row;
    }

    /// Whether another cell of the row follows; then to its first sign.
    bool passSeparator()
    {
        if (m_separator == ' ')
            skipBlanks();
        if (atLineEnd())
            return false;
        if (m_separator != ' ')
            ++m_next;
        return true;
    }

    Cell nextCell(const Row &row)
    {
        while (!atCellEnd() && isBlank(*m_next))
            ++m_next;
        const bool quotes = m_next != m_end && *m_next == '"';
        const Cell cell = quotes ? quotedCell(row) : plainCell();
        while (!atCellEnd() && isBlank(*m_next))
            ++m_next;
        if (!atCellEnd())
            throw InputError(m_path, place(row, row.cells.size()),
                             QStringLiteral("more behind the closing quotation mark"),
                             QStringLiteral("the end of the cell"));
        return cell;
    }

    Cell plainCell()
    {
        const char *const start = m_next;
        while (!atCellEnd())
            ++m_next;
        const char *stop = m_next;
        while (stop != start && isBlank(stop[-1]))
            --stop;
        return {start, static_cast<std::size_t>(stop - start)};
    }

    /// Doubled quotation marks inside stay doubled.
    Cell quotedCell(const Row &row)
    {
        const char *const start = ++m_next;
        for (; m_next != m_end; ++m_next) {
            m_line += *m_next == '\n' ? 1 : 0;
            if (*m_next != '"')
                continue;
            if (m_next + 1 == m_end || m_next[1] != '"')
                return {start, static_cast<std::size_t>(m_next++ - start)};
            ++m_next;
        }
        throw InputError(m_path, place(row, row.cells.size()),
                         QStringLiteral("the end of the file"),
                         QStringLiteral("a closing quotation mark"));
    }

    QString m_path;
    const char *m_next;
    const char *m_end;
    char m_separator; ///< a blank stands for any number of blanks and tabs
    int m_line = 1;
    int m_comments = 0;
};

// ---- what cells hold

/// A number, or "nan", "inf" and "-inf" in any case of letters.
std::optional<double> anyNumber(Cell cell)
{
    double value = 0.0;
    const char *const end = cell.data() + cell.size();
    const auto result = std::from_chars(cell.data(), end, value);
    const bool isNumber = result.ec == std::errc() && result.ptr == end;
    return isNumber ? std::optional(value) : std::nullopt;
}

/// The numbers that a table may hold.
struct Numbers {
    std::optional<double> (*of)(Cell cell);
    const char *name;
};

/// Those that fit into single precision; numbers below the smallest float are 0 there, not out of
/// range.
std::optional<double> singleNumber(Cell cell)
{
    const std::optional<double> number = anyNumber(cell);
    const bool fits =
        number && (std::isinf(*number) || !(std::abs(*number) > std::numeric_limits<float>::max()));
    return fits ? number : std::nullopt;
}

std::optional<double> numberOrMissing(Cell cell)
{
    return cell == "n/a" ? std::optional(std::numeric_limits<double>::quiet_NaN())
                         : anyNumber(cell);
}

constexpr Numbers singleNumbers{singleNumber, "a number of single precision"};
constexpr Numbers numbersOrMissing{numberOrMissing, "a number or n/a"};

/// Numbers that name things: whole and all different.
bool areCounters(const std::vector<Cell> &cells)
{
    const auto isCounter = [](Cell cell) {
        return !cell.empty() &&
               std::all_of(cell.begin(), cell.end(), [](char c) { return c >= '0' && c <= '9'; });
    };
    return std::all_of(cells.begin(), cells.end(), isCounter) &&
           std::set<Cell>(cells.begin(), cells.end()).size() == cells.size();
}

QString nameOf(Cell cell, const QString &path, const QString &where)
{
    QByteArray bytes = bytesOf(cell);
    bytes.replace("\"\"", "\"");
    const std::optional<QString> name = fromStrictUtf8(bytes);
    if (!name)
        throw InputError(path, where, quoted(bytes), QStringLiteral("text in UTF-8"));
    const std::optional<QString> fault = nameFault(*name);
    if (fault)
        throw InputError(path, where, *fault, QStringLiteral("a name without it"));
    return *name;
}

// ---- from cells to a matrix

/// A table of which it is known where its names stand.
class Table
{
public:
    Table(std::vector<Row> rows, const QString &path, const Numbers &numbers)
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
                    m_path, place(m_rows[r], std::min(found, m_width)),
                    counted(found, "cell") + QStringLiteral(" in this row"),
                    QStringLiteral("%1 as in row %2").arg(m_width).arg(m_rows.back().line));
        }
    }

    void findNames()
    {
        const std::vector<Cell> &first = m_rows.front().cells;
        // In tables of connectomes nodes may be called by the numbers of their labels.
        const bool saysNode = first.front() == "Node" && m_rows.size() == m_width;
        if (lacksCorner() || saysNode) {
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
            throw InputError(m_path, place(m_rows.back(), m_width - 1),
                             QStringLiteral("the end of a matrix of %1 rows and %2 columns")
                                 .arg(size())
                                 .arg(columns),
                             QStringLiteral("as many rows as columns"));
    }

    QStringList names() const
    {
        QStringList header;
        if (m_firstRow == 1) {
            const Row &row = m_rows.front();
            for (std::size_t c = lacksCorner() ? 0 : m_firstColumn; c < row.cells.size(); ++c)
                header.append(nameOf(row.cells[c], m_path, place(row, c)));
        }
        QStringList index;
        for (std::size_t r = m_firstRow; m_firstColumn == 1 && r < m_rows.size(); ++r)
            index.append(nameOf(m_rows[r].cells.front(), m_path, place(m_rows[r], 0)));
        if (!header.isEmpty() && !index.isEmpty())
            requireAgreement(header, index);
        return header.isEmpty() ? index : header;
    }

    /// An index that only counts beside a header of names says nothing about the order.
    void requireAgreement(const QStringList &header, const QStringList &index) const
    {
        for (int n = 0; n < header.size(); ++n) {
            const Row &row = m_rows[m_firstRow + static_cast<std::size_t>(n)];
            if (header[n] != index[n] && isText(row.cells.front()))
                throw InputError(m_path, place(row, 0), quoted(index[n]),
                                 QStringLiteral("%1 as in the header").arg(quoted(header[n])));
        }
    }

    Eigen::MatrixXd values() const
    {
        const auto n = static_cast<Eigen::Index>(size());
        Eigen::MatrixXd matrix(n, n);
        for (Eigen::Index i = 0; i < n; ++i) {
            const Row &row = m_rows[m_firstRow + static_cast<std::size_t>(i)];
            for (Eigen::Index j = 0; j < n; ++j) {
                const std::size_t column = m_firstColumn + static_cast<std::size_t>(j);
                const std::optional<double> number = m_numbers.of(row.cells[column]);
                if (!number)
                    throw InputError(m_path, place(row, column), found(row.cells[column]),
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
    std::vector<Row> m_rows;
    std::size_t m_width = 0;
    std::size_t m_firstRow = 0;    ///< of the matrix: 1 below a header
    std::size_t m_firstColumn = 0; ///< 1 beside an index
};

MatrixTable parseTable(const QByteArray &bytes, const QString &path, const Numbers &numbers)
{
    Reader reader(bytes, path);
    MatrixTable table = Table(reader.rows(), path, numbers).matrix();
    if (reader.comments() > 0)
        table.notes += QStringLiteral("%1: %2 skipped")
                           .arg(printable(path, 4096), counted(reader.comments(), "comment line"));
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
