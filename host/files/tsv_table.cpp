// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/tsv_table.h"

#include "host/files/input_error.h"
#include "host/files/input_file.h"
#include "host/files/limits.h"
#include "host/files/text_check.h"

#include <optional>

namespace corvane
{

namespace
{

QStringList cells(const QString &line)
{
    QStringList result = line.split(QLatin1Char('\t'));
    for (QString &cell : result)
        cell = cell.trimmed();
    return result;
}

} // namespace

TsvTable::TsvTable(const QString &path) : m_path(path)
{
    const InputFile file(path);
    QByteArray bytes = file.all(largestTable);
    if (bytes.startsWith("\xef\xbb\xbf"))
        bytes = bytes.mid(3);
    int number = 0;
    for (const QByteArray &lineBytes : bytes.split('\n')) {
        ++number;
        const QString place = QStringLiteral("line %1").arg(number);
        const std::optional<QString> line = fromStrictUtf8(lineBytes);
        if (!line || line->contains(QChar(0)))
            throw InputError(path, place, quoted(lineBytes), QStringLiteral("text in UTF-8"));
        if (line->trimmed().isEmpty())
            continue;
        const QStringList found = cells(*line);
        if (m_columns.isEmpty())
            m_columns = found;
        else if (found.size() == m_columns.size())
            m_rows.push_back({number, found});
        else
            throw InputError(path, place, QStringLiteral("%1 cells").arg(found.size()),
                             QStringLiteral("%1, one for each column, with tabs between them")
                                 .arg(m_columns.size()));
    }
    if (m_columns.isEmpty())
        throw InputError(path, QStringLiteral("content"), QStringLiteral("no line"),
                         QStringLiteral("a line with the names of the columns"));
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
