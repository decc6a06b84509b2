// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/cell_rows.h"

#include "dataset/counted.h"
#include "host/files/input_error.h"
#include "host/files/limits.h"
#include "host/files/text_check.h"

#include <algorithm>
#include <charconv>
#include <set>

namespace corvane
{

namespace
{

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

    std::vector<CellRow> rows()
    {
        std::vector<CellRow> rows;
        while (m_next != m_end) {
            const Line line = lineAt(m_next, m_end);
            if (line.isContent()) {
                rows.push_back(nextRow());
                m_cells += qint64(rows.back().cells.size());
                requireRoom(rows);
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
    void requireRoom(const std::vector<CellRow> &rows) const
    {
        if (qint64(rows.size()) > mostRows)
            tooMany(rows.back(), rows.size(), mostRows, QStringLiteral("rows"));
        if (m_cells > mostCells)
            tooMany(rows.back(), std::size_t(m_cells), mostCells, QStringLiteral("cells"));
    }

    [[noreturn]] void tooMany(const CellRow &row, std::size_t found, qint64 most,
                              const QString &unit) const
    {
        throw InputError(m_path, QStringLiteral("row %1").arg(row.line),
                         QStringLiteral("%1 %2 or more").arg(QString::number(found), unit),
                         QStringLiteral("at most %1").arg(most));
    }

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

    CellRow nextRow()
    {
        CellRow row{m_line, {}};
        if (m_separator == ' ')
            skipBlanks();
        bool more = true;
        while (more) {
            row.cells.push_back(nextCell(row));
            if (qint64(row.cells.size()) > mostColumns)
                tooMany(row, row.cells.size(), mostColumns, QStringLiteral("columns"));
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

    Cell nextCell(const CellRow &row)
    {
        while (!atCellEnd() && isBlank(*m_next))
            ++m_next;
        const bool quotes = m_next != m_end && *m_next == '"';
        const Cell cell = quotes ? quotedCell(row) : plainCell();
        while (!atCellEnd() && isBlank(*m_next))
            ++m_next;
        if (!atCellEnd())
            throw InputError(m_path, placeOf(row, row.cells.size()),
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
    Cell quotedCell(const CellRow &row)
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
        throw InputError(m_path, placeOf(row, row.cells.size()),
                         QStringLiteral("the end of the file"),
                         QStringLiteral("a closing quotation mark"));
    }

    QString m_path;
    const char *m_next;
    const char *m_end;
    char m_separator; ///< a blank stands for any number of blanks and tabs
    int m_line = 1;
    int m_comments = 0;
    qint64 m_cells = 0; ///< in the rows so far
};

} // namespace

CellTable splitCells(const QByteArray &bytes, const QString &path)
{
    Reader reader(bytes, path);
    CellTable table{reader.rows(), {}};
    if (reader.comments() > 0)
        table.notes += QStringLiteral("%1: %2 skipped")
                           .arg(printable(path, 4096), counted(reader.comments(), "comment line"));
    return table;
}

QString placeOf(const CellRow &row, std::size_t column)
{
    return QStringLiteral("row %1, column %2").arg(row.line).arg(column + 1);
}

QByteArray bytesOf(Cell cell)
{
    return {cell.data(), static_cast<int>(cell.size())};
}

std::optional<double> numberIn(Cell cell)
{
    double value = 0.0;
    const char *const end = cell.data() + cell.size();
    const auto result = std::from_chars(cell.data(), end, value);
    const bool isNumber = result.ec == std::errc() && result.ptr == end;
    return isNumber ? std::optional(value) : std::nullopt;
}

bool areCounters(const std::vector<Cell> &cells)
{
    const auto isCounter = [](Cell cell) {
        return !cell.empty() &&
               std::all_of(cell.begin(), cell.end(), [](char c) { return c >= '0' && c <= '9'; });
    };
    return std::all_of(cells.begin(), cells.end(), isCounter) &&
           std::set<Cell>(cells.begin(), cells.end()).size() == cells.size();
}

QString nameIn(Cell cell, const QString &path, const QString &place)
{
    QByteArray bytes = bytesOf(cell);
    bytes.replace("\"\"", "\"");
    const std::optional<QString> name = fromStrictUtf8(bytes);
    if (!name)
        throw InputError(path, place, quoted(bytes), QStringLiteral("text in UTF-8"));
    const std::optional<QString> fault = nameFault(*name);
    if (fault)
        throw InputError(path, place, *fault, QStringLiteral("a name without it"));
    return *name;
}

} // namespace corvane
