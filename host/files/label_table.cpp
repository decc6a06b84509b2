// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/label_table.h"

#include "host/files/input_error.h"
#include "host/files/text_check.h"
#include "host/files/tsv_table.h"

#include <QRegularExpression>
#include <limits>

namespace corvane
{

namespace
{

qint32 labelNumber(const TsvTable &table, int row, int column)
{
    const std::optional<qint64> number = wholeNumber(table.cell(row, column));
    if (!number || *number < std::numeric_limits<qint32>::min() ||
        *number > std::numeric_limits<qint32>::max())
        throw InputError(table.path(), table.place(row, column), quoted(table.cell(row, column)),
                         QStringLiteral("a whole number of 32 bits"));
    return static_cast<qint32>(*number);
}

QString labelName(const TsvTable &table, int row, int column, qint32 label)
{
    const QString name = table.cell(row, column);
    if (const std::optional<QString> fault = nameFault(name))
        throw InputError(table.path(), table.place(row, column), *fault,
                         QStringLiteral("the name of a label"));
    return name.isEmpty() || name == QLatin1String("n/a") ? QString::number(label) : name;
}

/// Tables differ in how they write colours: one that is not understood is none.
std::optional<Colour> labelColour(const QString &text)
{
    static const QRegularExpression pattern(
        QStringLiteral("^#([0-9a-f]{2})([0-9a-f]{2})([0-9a-f]{2})$"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const auto part = [&](int number) { return match.captured(number).toInt(nullptr, 16); };
    return Colour{part(1), part(2), part(3)};
}

} // namespace

LabelTable readLabelTable(const QString &path)
{
    const TsvTable table(path);
    const int indexColumn = table.requiredColumn(QStringLiteral("index"));
    int nameColumn = table.column(QStringLiteral("name"));
    if (nameColumn < 0)
        nameColumn = table.column(QStringLiteral("label"));
    if (nameColumn < 0)
        nameColumn = table.requiredColumn(QStringLiteral("name"));
    const int colourColumn = table.column(QStringLiteral("color"));

    LabelTable labels;
    std::map<qint32, QString> places;
    for (int row = 0; row < table.rowCount(); ++row) {
        const qint32 label = labelNumber(table, row, indexColumn);
        const auto [first, isNew] = places.emplace(label, table.place(row));
        if (!isNew)
            throw InputError(path, table.place(row, indexColumn),
                             QStringLiteral("%1, which %2 has too").arg(label).arg(first->second),
                             QStringLiteral("each index once"));
        if (label == 0)
            continue;
        LabelEntry entry;
        entry.name = labelName(table, row, nameColumn, label);
        if (colourColumn >= 0)
            entry.colour = labelColour(table.cell(row, colourColumn));
        labels.emplace(label, entry);
    }
    return labels;
}

} // namespace corvane
