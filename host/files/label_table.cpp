// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/label_table.h"

#include "host/files/input_error.h"
#include "host/files/text_check.h"
#include "host/files/tsv_table.h"

#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane
{

namespace
{

// ---- what both forms hold

/// A label, also as "1.0"; unset for anything else than a whole number of 32 bits.
std::optional<qint32> labelNumber(const QString &text)
{
    const std::optional<double> number = finiteNumber(text);
    if (!number || *number != std::floor(*number) || *number < std::numeric_limits<qint32>::min() ||
        *number > std::numeric_limits<qint32>::max())
        return std::nullopt;
    return static_cast<qint32>(*number);
}

QString labelRule()
{
    return QStringLiteral("a whole number of 32 bits");
}

std::optional<int> colourPart(const QString &text)
{
    const std::optional<double> number = finiteNumber(text);
    if (!number || *number != std::floor(*number) || *number < 0 || *number > 255)
        return std::nullopt;
    return static_cast<int>(*number);
}

std::optional<Colour> colourOfParts(const QString &red, const QString &green, const QString &blue)
{
    const std::optional<int> r = colourPart(red);
    const std::optional<int> g = colourPart(green);
    const std::optional<int> b = colourPart(blue);
    return r && g && b ? std::optional(Colour{*r, *g, *b}) : std::nullopt;
}

/// Labels as they are read, each once.
class LabelCollector
{
public:
    explicit LabelCollector(const QString &path) : m_path(path) {}

    /// `row` is where the label stands, `place` where its index does.
    void add(qint32 label, LabelEntry entry, const QString &row, const QString &place)
    {
        const auto [first, isNew] = m_places.emplace(label, row);
        if (!isNew)
            throw InputError(m_path, place,
                             QStringLiteral("%1, which %2 has too").arg(label).arg(first->second),
                             QStringLiteral("each index once"));
        if (label != 0)
            m_labels.emplace(label, std::move(entry));
    }

    const LabelTable &labels() const { return m_labels; }

private:
    QString m_path;
    std::map<qint32, QString> m_places;
    LabelTable m_labels;
};

// ---- tables with names of columns

/// A text of a row, empty for none; `what` it is stands in messages.
QString textOf(const TsvTable &table, int row, int column, const char *what)
{
    if (column < 0)
        return {};
    const QString text = table.cell(row, column);
    if (const std::optional<QString> fault = nameFault(text))
        throw InputError(table.path(), table.place(row, column), *fault, QLatin1String(what));
    return text == QLatin1String("n/a") ? QString() : text;
}

std::optional<Colour> colourOfCode(const QString &text)
{
    static const QRegularExpression pattern(
        QStringLiteral("\\A(?:#?([0-9a-f]{6})|#([0-9a-f]{6})[0-9a-f]{2}|#([0-9a-f]{3}))\\z"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    QString digits = match.captured(match.lastCapturedIndex());
    if (digits.size() == 3)
        digits = QString(2, digits[0]) + QString(2, digits[1]) + QString(2, digits[2]);
    const auto part = [&](int number) { return digits.midRef(2 * number, 2).toInt(nullptr, 16); };
    return Colour{part(0), part(1), part(2)};
}

/// Where a table has its colours.
struct ColourColumns {
    int code = -1;
    int red = -1;
    int green = -1;
    int blue = -1;

    explicit ColourColumns(const TsvTable &table) : code(table.column(QStringLiteral("color")))
    {
        const auto find = [&](const char *letter, const char *word) {
            const QStringList &columns = table.columns();
            const auto found =
                std::find_if(columns.begin(), columns.end(), [&](const QString &name) {
                    return name.compare(QLatin1String(letter), Qt::CaseInsensitive) == 0 ||
                           name.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
                });
            return found == columns.end() ? -1 : static_cast<int>(found - columns.begin());
        };
        red = find("r", "red");
        green = find("g", "green");
        blue = find("b", "blue");
    }

    std::optional<Colour> colour(const TsvTable &table, int row) const
    {
        std::optional<Colour> result;
        if (code >= 0)
            result = colourOfCode(table.cell(row, code));
        if (!result && red >= 0 && green >= 0 && blue >= 0)
            result =
                colourOfParts(table.cell(row, red), table.cell(row, green), table.cell(row, blue));
        return result;
    }
};

/// The column of the first of these names that the table has in any case of letters; -1 without.
int columnNamed(const TsvTable &table, std::initializer_list<const char *> names)
{
    for (const char *const name : names)
        for (int column = 0; column < table.columns().size(); ++column)
            if (table.columns()[column].compare(QLatin1String(name), Qt::CaseInsensitive) == 0)
                return column;
    return -1;
}

LabelTable readColumns(const TsvTable &table)
{
    const int indexColumn = table.requiredColumn(QStringLiteral("index"));
    int nameColumn = table.column(QStringLiteral("name"));
    if (nameColumn < 0)
        nameColumn = table.column(QStringLiteral("label"));
    if (nameColumn < 0)
        nameColumn = table.requiredColumn(QStringLiteral("name"));
    const ColourColumns colours(table);
    const int networkColumn = columnNamed(
        table, {"network", "network_label", "network_name", "system", "community", "module"});
    const int hemisphereColumn = columnNamed(table, {"hemisphere", "hemi", "side"});

    LabelCollector labels(table.path());
    for (int row = 0; row < table.rowCount(); ++row) {
        const std::optional<qint32> label = labelNumber(table.cell(row, indexColumn));
        if (!label)
            throw InputError(table.path(), table.place(row, indexColumn),
                             quoted(table.cell(row, indexColumn)), labelRule());
        labels.add(*label,
                   {textOf(table, row, nameColumn, "the name of a label"),
                    colours.colour(table, row),
                    textOf(table, row, networkColumn, "the name of a network"),
                    textOf(table, row, hemisphereColumn, "the name of a side")},
                   table.place(row), table.place(row, indexColumn));
    }
    return labels.labels();
}

// ---- colour tables

QStringList words(const QString &line)
{
    return line.simplified().split(QLatin1Char(' '));
}

/// Whether the first line is one of a colour table: it begins with a number and is no line of
/// names.
bool isColourTable(const std::vector<TextLine> &lines)
{
    const auto first = std::find_if(lines.begin(), lines.end(),
                                    [](const TextLine &line) { return !isComment(line.text); });
    if (first == lines.end())
        return false;
    const QStringList found = words(first->text);
    return found.size() >= 6 && labelNumber(found.front());
}

LabelTable readColourTable(const QString &path, const std::vector<TextLine> &lines)
{
    LabelCollector labels(path);
    for (const TextLine &line : lines) {
        if (isComment(line.text))
            continue;
        const QString place = QStringLiteral("line %1").arg(line.number);
        const QStringList found = words(line.text);
        const int count = found.size();
        const std::optional<qint32> label = labelNumber(found.front());
        const bool hasColour =
            count >= 6 && std::all_of(found.end() - 4, found.end(), [](const QString &word) {
                return finiteNumber(word).has_value();
            });
        if (!label || !hasColour)
            throw InputError(path, place, quoted(line.text),
                             QStringLiteral("index, name, red, green, blue and alpha with blanks "
                                            "between them"));
        const QString name = found.mid(1, count - 5).join(QLatin1Char(' '));
        if (const std::optional<QString> fault = nameFault(name))
            throw InputError(path, place, *fault, QStringLiteral("the name of a label"));
        labels.add(*label,
                   {name, colourOfParts(found[count - 4], found[count - 3], found[count - 2])},
                   place, place);
    }
    return labels.labels();
}

} // namespace

LabelTable readLabelTable(const QString &path, QStringList &notes)
{
    const std::vector<TextLine> lines = readTextLines(path);
    if (isColourTable(lines))
        return readColourTable(path, lines);
    const TsvTable table(path, lines);
    notes += table.notes();
    return readColumns(table);
}

} // namespace corvane
