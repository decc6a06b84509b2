// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/confounds_table.h"

#include "dataset/counted.h"
#include "host/files/input_error.h"
#include "host/files/input_file.h"
#include "host/files/limits.h"
#include "host/files/text_check.h"
#include "host/files/text_lines.h"
#include "host/files/tsv_table.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <algorithm>
#include <limits>

namespace corvane
{

namespace
{

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

QStringList words(const QString &line)
{
    return line.simplified().split(QLatin1Char(' '));
}

QString placeOf(const TextLine &line)
{
    return QStringLiteral("line %1").arg(line.number);
}

/// Whether the first line that is no comment holds nothing but numbers.
bool hasNoHeader(const std::vector<TextLine> &lines)
{
    const auto first = std::find_if(lines.begin(), lines.end(),
                                    [](const TextLine &line) { return !isComment(line.text); });
    if (first == lines.end())
        return false;
    const QStringList found = words(first->text);
    return std::all_of(found.begin(), found.end(),
                       [](const QString &word) { return finiteNumber(word).has_value(); });
}

// ---- motion parameters of other packages

std::vector<double> numbersOf(const TextLine &line, const QString &path)
{
    std::vector<double> numbers;
    for (const QString &word : words(line.text)) {
        const std::optional<double> number = finiteNumber(word);
        if (!number)
            throw InputError(path,
                             placeOf(line) + QStringLiteral(", column %1").arg(numbers.size() + 1),
                             quoted(word), QStringLiteral("a number"));
        numbers.push_back(*number);
    }
    return numbers;
}

signals::ConfoundsTable readNumbers(const QString &path, std::vector<TextLine> lines)
{
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                               [](const TextLine &line) { return isComment(line.text); }),
                lines.end());
    signals::ConfoundsTable table;
    const std::size_t columns = numbersOf(lines.front(), path).size();
    for (std::size_t column = 1; column <= columns; ++column)
        table.names.push_back("p" + std::to_string(column));
    table.values.resize(Eigen::Index(lines.size()), Eigen::Index(columns));
    for (std::size_t row = 0; row < lines.size(); ++row) {
        const std::vector<double> numbers = numbersOf(lines[row], path);
        if (numbers.size() != columns)
            throw InputError(path, placeOf(lines[row]), counted(qint64(numbers.size()), "number"),
                             QStringLiteral("%1, as in the first line").arg(columns));
        table.values.row(Eigen::Index(row)) =
            Eigen::Map<const Eigen::RowVectorXd>(numbers.data(), Eigen::Index(columns));
    }
    return table;
}

// ---- tables with names

double valueOf(const TsvTable &table, int row, int column)
{
    const QString text = table.cell(row, column);
    if (text == QLatin1String("n/a"))
        return missing;
    const std::optional<double> number = finiteNumber(text);
    if (!number)
        throw InputError(table.path(), table.place(row, column), quoted(text),
                         QStringLiteral("a number or \"n/a\""));
    return *number;
}

signals::ConfoundsTable readColumns(const TsvTable &source)
{
    signals::ConfoundsTable table;
    for (const QString &name : source.columns())
        table.names.push_back(name.toStdString());
    table.values.resize(source.rowCount(), source.columns().size());
    for (int row = 0; row < source.rowCount(); ++row)
        for (int column = 0; column < source.columns().size(); ++column)
            table.values(row, column) = valueOf(source, row, column);
    return table;
}

QString sidecarOf(const QString &path)
{
    const QFileInfo file(path);
    return file.path() + QLatin1Char('/') + file.completeBaseName() + QStringLiteral(".json");
}

/// Components stand in the JSON as objects; a name that is none of ours is kept all the same.
std::vector<signals::Component> readComponents(const QString &path)
{
    QJsonParseError fault{};
    const QByteArray text = InputFile(path).all(largestText);
    const QJsonDocument document = QJsonDocument::fromJson(text, &fault);
    if (!document.isObject())
        throw InputError(path, QStringLiteral("byte %1").arg(fault.offset),
                         document.isNull() ? fault.errorString() : QStringLiteral("no object"),
                         QStringLiteral("a JSON object"));
    std::vector<signals::Component> components;
    const QJsonObject entries = document.object();
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        const QJsonObject facts = entry.value().toObject();
        const QString method = facts.value(QStringLiteral("Method")).toString();
        if (!method.isEmpty())
            components.push_back({entry.key().toStdString(), method.toStdString(),
                                  facts.value(QStringLiteral("Mask")).toString().toStdString(),
                                  facts.value(QStringLiteral("Retained")).toBool(true)});
    }
    return components;
}

} // namespace

signals::ConfoundsTable readConfounds(const QString &path, QStringList &notes)
{
    const std::vector<TextLine> lines = readTextLines(path);
    if (hasNoHeader(lines))
        return readNumbers(path, lines);
    const TsvTable source(path, lines);
    notes += source.notes();
    signals::ConfoundsTable table = readColumns(source);
    if (QFileInfo::exists(sidecarOf(path)))
        table.components = readComponents(sidecarOf(path));
    return table;
}

signals::Flags readCensorFile(const QString &path, int volumes)
{
    const std::vector<TextLine> lines = readTextLines(path);
    if (int(lines.size()) != volumes)
        throw InputError(path, QStringLiteral("content"), counted(qint64(lines.size()), "line"),
                         QStringLiteral("%1, one for each volume of the run").arg(volumes));
    signals::Flags flags(volumes);
    for (int volume = 0; volume < volumes; ++volume) {
        const QString text = lines[std::size_t(volume)].text.trimmed();
        if (text != QLatin1String("0") && text != QLatin1String("1"))
            throw InputError(path, placeOf(lines[std::size_t(volume)]), quoted(text),
                             QStringLiteral("0 for a volume that stays or 1 for one that goes"));
        flags[volume] = text == QLatin1String("1");
    }
    return flags;
}

} // namespace corvane
