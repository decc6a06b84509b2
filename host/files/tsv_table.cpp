// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/tsv_table.h"

#include "dataset/counted.h"
#include "host/files/input_error.h"

namespace corvane
{

namespace
{

/// A text without the quotation marks around it, those inside it being doubled.
QString unquoted(const QString &text)
{
    const QLatin1Char mark('"');
    if (text.size() < 2 || !text.startsWith(mark) || !text.endsWith(mark))
        return text;
    return text.mid(1, text.size() - 2)
        .replace(QLatin1String("\"\""), QLatin1String("\""))
        .trimmed();
}

QStringList cells(const QString &line)
{
    QStringList result = line.split(QLatin1Char('\t'));
    for (QString &cell : result)
        cell = unquoted(cell.trimmed());
    return result;
}

} // namespace

TsvTable::TsvTable(const QString &path) : TsvTable(path, readTextLines(path)) {}

TsvTable::TsvTable(const QString &path, const std::vector<TextLine> &lines) : m_path(path)
{
    int comments = 0;
    for (const TextLine &line : lines) {
        if (m_columns.isEmpty() && isComment(line.text)) {
            ++comments;
            continue;
        }
        const QStringList found = cells(line.text);
        if (m_columns.isEmpty())
            m_columns = found;
        else if (found.size() == m_columns.size())
            m_rows.push_back({line.number, found});
        else
            throw InputError(path, QStringLiteral("line %1").arg(line.number),
                             counted(found.size(), "cell"),
                             QStringLiteral("%1, one for each column, with tabs between them")
                                 .arg(m_columns.size()));
    }
    if (m_columns.isEmpty())
        throw InputError(path, QStringLiteral("content"), QStringLiteral("no line"),
                         QStringLiteral("a line with the names of the columns"));
    if (comments > 0)
        m_notes += QStringLiteral("%1: %2 above the names of the columns skipped")
                       .arg(printable(path, 4096), counted(comments, "comment line"));
}

int TsvTable::requiredColumn(const QString &name) const
{
    const int position = column(name);
    if (position < 0)
        throw InputError(m_path, QStringLiteral("first line"),
                         QStringLiteral("the columns ") +
                             quoted(m_columns.join(QStringLiteral(", "))),
                         QStringLiteral("a column ") + quoted(name));
    return position;
}

} // namespace corvane
