// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/brain_map.h"

#include "host/files/input_error.h"
#include "host/files/text_check.h"
#include "host/files/text_lines.h"
#include "statistics/table.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace corvane
{

namespace
{

/// Cells between a sign, without the blanks and quotation marks around them.
QStringList cellsOf(const QString &line, QChar between)
{
    QStringList cells;
    QString cell;
    bool isQuoted = false;
    for (const QChar sign : line + between) {
        if (sign == QLatin1Char('"'))
            isQuoted = !isQuoted;
        if (sign != between || isQuoted) {
            cell += sign;
            continue;
        }
        cell = cell.trimmed();
        if (cell.size() > 1 && cell.startsWith(QLatin1Char('"')) && cell.endsWith(QLatin1Char('"')))
            cell =
                cell.mid(1, cell.size() - 2).replace(QStringLiteral("\"\""), QStringLiteral("\""));
        cells += cell;
        cell.clear();
    }
    return cells;
}

bool isNumberOrMissing(const QString &cell)
{
    return finiteNumber(cell) || statistics::is_missing(cell.toStdString());
}

class MapTable
{
public:
    explicit MapTable(const QString &path) : m_path(path)
    {
        std::vector<TextLine> lines = readTextLines(path);
        lines.erase(std::remove_if(lines.begin(), lines.end(),
                                   [](const TextLine &line) { return isComment(line.text); }),
                    lines.end());
        if (lines.empty())
            throw InputError(path, QStringLiteral("content"), QStringLiteral("no line"),
                             QStringLiteral("a table with a row for each node"));
        const QChar between =
            lines.front().text.contains(QLatin1Char('\t')) ? QLatin1Char('\t') : QLatin1Char(',');
        m_columns = cellsOf(lines.front().text, between);
        std::size_t first = 1;
        if (std::all_of(m_columns.begin(), m_columns.end(), isNumberOrMissing)) {
            for (int column = 0; column < m_columns.size(); ++column)
                m_columns[column] = QString::number(column + 1);
            first = 0;
        }
        for (std::size_t n = first; n < lines.size(); ++n) {
            m_rows.push_back(cellsOf(lines[n].text, between));
            m_lines.push_back(lines[n].number);
            if (m_rows.back().size() != m_columns.size())
                throw InputError(path, QStringLiteral("line %1").arg(lines[n].number),
                                 QStringLiteral("%1 cells").arg(m_rows.back().size()),
                                 QStringLiteral("%1 as in the first line").arg(m_columns.size()));
        }
    }

    int rowCount() const { return static_cast<int>(m_rows.size()); }
    QString cell(int row, int column) const { return m_rows[row][column]; }
    QString name(int column) const { return m_columns[column]; }
    QString place(int row, int column) const
    {
        return QStringLiteral("line %1, %2").arg(m_lines[row]).arg(m_columns[column]);
    }

    /// The column of nodes' names, -1 for none.
    int names() const
    {
        for (const char *const name : {"name", "Node"})
            if (m_columns.contains(QLatin1String(name)))
                return m_columns.indexOf(QLatin1String(name));
        for (int column = 0; column < m_columns.size(); ++column)
            if (holdsNames(column))
                return column;
        return -1;
    }

    /// The column of that name, or the only one that may be meant.
    int values(const QString &asked) const
    {
        if (!asked.isEmpty() && m_columns.contains(asked))
            return m_columns.indexOf(asked);
        std::vector<int> possible;
        for (int column = 0; column < m_columns.size(); ++column)
            if (mayBeMeant(column))
                possible.push_back(column);
        if (asked.isEmpty() && possible.size() == 1)
            return possible.front();
        QStringList known;
        for (const int column : possible)
            known += m_columns[column];
        throw InputError(m_path, QStringLiteral("columns"),
                         asked.isEmpty() ? QStringLiteral("%1 with numbers").arg(possible.size())
                                         : QStringLiteral("no ") + quoted(asked),
                         known.isEmpty() ? QStringLiteral("a column of numbers")
                                         : QStringLiteral("the name of one: ") +
                                               known.join(QStringLiteral(", ")));
    }

private:
    bool holdsNames(int column) const
    {
        std::set<QString> texts;
        for (const QStringList &row : m_rows)
            if (isNumberOrMissing(row[column]) || !texts.insert(row[column]).second)
                return false;
        return !m_rows.empty();
    }

    bool mayBeMeant(int column) const
    {
        static const QStringList counters{QStringLiteral("node"), QStringLiteral("index"),
                                          QStringLiteral("name"), QStringLiteral("Node"),
                                          QStringLiteral("slice")};
        return !counters.contains(m_columns[column]) &&
               std::all_of(m_rows.begin(), m_rows.end(), [column](const QStringList &row) {
                   return isNumberOrMissing(row[column]);
               });
    }

    QString m_path;
    QStringList m_columns;
    std::vector<QStringList> m_rows;
    std::vector<int> m_lines; ///< of the rows, in the file
};

bool onlyCount(const QStringList &names)
{
    for (int row = 0; row < names.size(); ++row)
        if (names[row] != QString::number(row))
            return false;
    return true;
}

QStringList namesOf(const MapTable &table, const QString &path)
{
    const int column = table.names();
    QStringList names;
    for (int row = 0; column >= 0 && row < table.rowCount(); ++row)
        names += table.cell(row, column);
    if (onlyCount(names))
        return {};
    std::set<QString> seen;
    for (int row = 0; row < names.size(); ++row)
        if (!seen.insert(names[row]).second)
            throw InputError(path, table.place(row, column),
                             quoted(names[row]) + QStringLiteral(" again"),
                             QStringLiteral("each node once"));
    return names;
}

Eigen::ArrayXd valuesOf(const MapTable &table, int column, const QString &path)
{
    Eigen::ArrayXd values(table.rowCount());
    for (int row = 0; row < table.rowCount(); ++row) {
        const QString cell = table.cell(row, column);
        if (!isNumberOrMissing(cell))
            throw InputError(path, table.place(row, column), quoted(cell),
                             QStringLiteral("a number or n/a"));
        values(row) = finiteNumber(cell).value_or(std::numeric_limits<double>::quiet_NaN());
    }
    return values;
}

MatchedMaps matchRows(const BrainMap &first, const BrainMap &second)
{
    const BrainMap &nameless = first.names.isEmpty() ? first : second;
    if (first.values.size() != second.values.size())
        throw InputError(second.path, QStringLiteral("rows"), QString::number(second.values.size()),
                         QStringLiteral("%1 as in %2, since nodes of %3 have no names")
                             .arg(first.values.size())
                             .arg(first.path, nameless.path));
    MatchedMaps maps{first.names.isEmpty() ? second.names : first.names,
                     first.values,
                     second.values,
                     {QStringLiteral("nodes are matched by their rows: those of %1 have no names")
                          .arg(nameless.path)}};
    for (int row = 0; maps.names.size() < first.values.size(); ++row)
        maps.names += QString::number(row + 1);
    return maps;
}

QString onlyIn(const BrainMap &map, const QStringList &names)
{
    return QStringLiteral("only in %1: %2").arg(map.path, names.join(QStringLiteral(", ")));
}

} // namespace

BrainMap readBrainMap(const QString &path, const QString &column)
{
    const MapTable table(path);
    const int values = table.values(column);
    return {path, table.name(values), namesOf(table, path), valuesOf(table, values, path)};
}

MatchedMaps matchMaps(const BrainMap &first, const BrainMap &second)
{
    if (first.names.isEmpty() || second.names.isEmpty())
        return matchRows(first, second);
    std::map<QString, int> rows;
    for (int row = 0; row < second.names.size(); ++row)
        rows[second.names[row]] = row;
    std::vector<double> firsts, seconds;
    MatchedMaps maps;
    QStringList lost;
    for (int row = 0; row < first.names.size(); ++row) {
        const auto found = rows.find(first.names[row]);
        if (found == rows.end()) {
            lost += first.names[row];
            continue;
        }
        maps.names += first.names[row];
        firsts.push_back(first.values(row));
        seconds.push_back(second.values(found->second));
    }
    if (maps.names.isEmpty())
        throw InputError(second.path, QStringLiteral("names"),
                         QStringLiteral("none of %1").arg(first.path),
                         QStringLiteral("the same nodes, such as ") + quoted(first.names.front()));
    const auto count = static_cast<Eigen::Index>(firsts.size());
    maps.first = Eigen::Map<const Eigen::ArrayXd>(firsts.data(), count);
    maps.second = Eigen::Map<const Eigen::ArrayXd>(seconds.data(), count);
    if (!lost.isEmpty())
        maps.notes += onlyIn(first, lost);
    QStringList others;
    for (const QString &name : second.names)
        if (!first.names.contains(name))
            others += name;
    if (!others.isEmpty())
        maps.notes += onlyIn(second, others);
    return maps;
}

} // namespace corvane
