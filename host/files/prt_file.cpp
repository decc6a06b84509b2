// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/prt_file.h"

#include "host/files/input_error.h"
#include "host/files/input_file.h"
#include "host/files/limits.h"
#include "host/files/output_file.h"
#include "host/files/text_check.h"

#include <QByteArrayList>
#include <QHash>
#include <QStringList>

namespace corvane
{

namespace
{

constexpr auto firstMagic = "# Corvane protocol, version 1";
constexpr auto magic = "# Corvane protocol, version 2";
constexpr auto namePrefix = "# name:";
constexpr auto timeUnitPrefix = "# time unit:";
constexpr auto subjectPrefix = "# subject:";
constexpr auto spacePrefix = "# space name:";
constexpr auto columns = "condition\tfrom\tto";
constexpr auto lastLine = "# end";

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

/// Takes one line after the other and knows where it stands.
class LineReader
{
public:
    LineReader(const QString &path, const QByteArray &bytes) : m_path(path), m_bytes(bytes) {}

    /// The next line without its line feed. Throws when there is none, or none that is finished.
    QString next(const QString &expected)
    {
        ++m_number;
        const int end = m_bytes.indexOf('\n', m_from);
        if (end < 0)
            throw InputError(m_path, place(),
                             m_from == m_bytes.size() ? QStringLiteral("the end of the file")
                                                      : quoted(m_bytes.mid(m_from, 200)) +
                                                            QStringLiteral(" without a line feed"),
                             expected);
        QByteArray line = m_bytes.mid(m_from, end - m_from);
        if (line.endsWith('\r'))
            line.chop(1);
        m_from = end + 1;
        const std::optional<QString> decoded = fromStrictUtf8(line);
        if (!decoded)
            fail(quoted(line), QStringLiteral("UTF-8"));
        return *decoded;
    }

    void requireEnd()
    {
        ++m_number;
        if (m_from != m_bytes.size())
            fail(quoted(m_bytes.mid(m_from, 200)),
                 QStringLiteral("the end of the file behind ") + quoted(text(lastLine)));
    }

    [[noreturn]] void fail(const QString &found, const QString &expected) const
    {
        throw InputError(m_path, place(), found, expected);
    }

private:
    QString place() const { return QStringLiteral("line %1").arg(m_number); }

    QString m_path;
    QByteArray m_bytes;
    int m_from = 0;
    int m_number = 0;
};

void requireLine(LineReader &lines, const char *expected)
{
    const QString line = lines.next(quoted(text(expected)));
    if (line != text(expected))
        lines.fail(quoted(line), quoted(text(expected)));
}

/// What stands behind a prefix and one blank; the blank may be missing when nothing follows.
QString valueBehind(LineReader &lines, const char *prefix)
{
    const QString line = lines.next(quoted(text(prefix)));
    if (!line.startsWith(text(prefix)))
        lines.fail(quoted(line), QStringLiteral("a line that begins ") + quoted(text(prefix)));
    const QString value = line.mid(text(prefix).size());
    return value.startsWith(QLatin1Char(' ')) ? value.mid(1) : value;
}

int boundedNumber(const LineReader &lines, const QString &word, const QString &what, int lowest)
{
    const WholeRange range{lowest, largestCount};
    const std::optional<qint64> number = wholeNumber(word);
    if (!number || !range.holds(static_cast<double>(*number)))
        lines.fail(quoted(word), QStringLiteral("%1 as %2").arg(what, range.text()));
    return static_cast<int>(*number);
}

void checkName(const LineReader &lines, const QString &name)
{
    if (const auto fault = nameFault(name))
        lines.fail(quoted(name), QStringLiteral("a name without control characters"));
}

/// A subject or a space.
QString readLabel(LineReader &lines, const char *prefix)
{
    QString label = valueBehind(lines, prefix);
    if (const auto fault = provenanceFault(label))
        lines.fail(*fault, provenanceRule());
    return label;
}

/// The first line.
int readVersion(LineReader &lines)
{
    const QString expected =
        QStringLiteral("%1 or %2").arg(quoted(text(magic)), quoted(text(firstMagic)));
    const QString line = lines.next(expected);
    if (line != text(magic) && line != text(firstMagic))
        lines.fail(quoted(line), expected);
    return line == text(magic) ? 2 : 1;
}

/// Rows "condition, from, to" up to the last line. A row without numbers begins a condition; the
/// others belong to the last condition of their name, which the first of them begins.
std::vector<PrtCondition> readConditions(LineReader &lines)
{
    const QString expected =
        QStringLiteral("condition, from and to between tabs, or ") + quoted(text(lastLine));
    std::vector<PrtCondition> conditions;
    QHash<QString, std::size_t> lastOfName;
    for (;;) {
        const QString line = lines.next(expected);
        if (line == text(lastLine))
            return conditions;
        const QStringList cells = line.split(QLatin1Char('\t'));
        if (cells.size() != 3)
            lines.fail(quoted(line), expected);
        const QString &name = cells[0];
        if (name.isEmpty())
            lines.fail(QStringLiteral("an empty name"), QStringLiteral("the condition's name"));
        checkName(lines, name);

        const bool declaresOnly = cells[1].isEmpty() && cells[2].isEmpty();
        if (declaresOnly || !lastOfName.contains(name)) {
            lastOfName[name] = conditions.size();
            conditions.push_back({name, {}});
        }
        if (declaresOnly)
            continue;
        const int from = boundedNumber(lines, cells[1], QStringLiteral("from"), 1);
        const int to = boundedNumber(lines, cells[2], QStringLiteral("to"), 1);
        if (to < from)
            lines.fail(QStringLiteral("an interval from %1 to %2").arg(from).arg(to),
                       QStringLiteral("from not above to"));
        conditions[lastOfName[name]].intervals.emplace_back(from, to);
    }
}

/// The rules that a protocol must keep to be written.
void checkPrt(const QString &path, const Prt &prt)
{
    const auto checkText = [&path](const QString &place, const QString &name) {
        if (const auto fault = nameFault(name))
            throw InputError(path, place, *fault, QStringLiteral("a name without it"));
    };
    checkText(QStringLiteral("name"), prt.name);
    for (const auto &[place, label] :
         {std::pair{QStringLiteral("subject"), prt.provenance.subject},
          std::pair{QStringLiteral("space name"), prt.provenance.space}})
        if (const auto fault = provenanceFault(label))
            throw InputError(path, place, *fault, provenanceRule());
    if (prt.timeUnit < 0)
        throw InputError(path, QStringLiteral("time unit"), QString::number(prt.timeUnit),
                         QStringLiteral("0 or more"));
    for (std::size_t c = 0; c < prt.conditions.size(); ++c) {
        const PrtCondition &condition = prt.conditions[c];
        const QString place = QStringLiteral("condition %1 (%2)")
                                  .arg(QString::number(c + 1), printable(condition.name));
        if (condition.name.isEmpty())
            throw InputError(path, place, QStringLiteral("an empty name"),
                             QStringLiteral("a name"));
        checkText(place, condition.name);
        for (const auto &[from, to] : condition.intervals) {
            if (from < 1 || to < from)
                throw InputError(path, place,
                                 QStringLiteral("an interval from %1 to %2").arg(from).arg(to),
                                 QStringLiteral("1 <= from <= to"));
        }
    }
}

} // namespace

Prt readPrtFile(const QString &path)
{
    const InputFile file(path);
    if (file.size() == 0)
        throw InputError(path, QStringLiteral("line 1"), QStringLiteral("an empty file"),
                         quoted(text(magic)));
    LineReader lines(path, file.all(largestText));
    const bool isSecond = readVersion(lines) == 2;
    Prt prt;
    prt.name = valueBehind(lines, namePrefix);
    checkName(lines, prt.name);
    prt.timeUnit = boundedNumber(lines, valueBehind(lines, timeUnitPrefix),
                                 QStringLiteral("the time unit"), 0);
    if (isSecond) {
        prt.provenance.subject = readLabel(lines, subjectPrefix);
        prt.provenance.space = readLabel(lines, spacePrefix);
    }
    requireLine(lines, columns);
    prt.conditions = readConditions(lines);
    lines.requireEnd();
    return prt;
}

void writePrtFile(const QString &path, const Prt &prt)
{
    checkPrt(path, prt);
    QByteArray bytes = QByteArray(magic) + '\n' + namePrefix + ' ' + prt.name.toUtf8() + '\n' +
                       timeUnitPrefix + ' ' + QByteArray::number(prt.timeUnit) + '\n' +
                       subjectPrefix + ' ' + prt.provenance.subject.toUtf8() + '\n' + spacePrefix +
                       ' ' + prt.provenance.space.toUtf8() + '\n' + columns + '\n';
    QStringList written;
    for (const PrtCondition &condition : prt.conditions) {
        const QByteArray name = condition.name.toUtf8() + '\t';
        // Without intervals, or with a name that an earlier condition has, it must be declared.
        if (condition.intervals.empty() || written.contains(condition.name))
            bytes += name + "\t\n";
        for (const auto &[from, to] : condition.intervals)
            bytes += name + QByteArray::number(from) + '\t' + QByteArray::number(to) + '\n';
        written.append(condition.name);
    }
    writeFile(path, bytes + lastLine + '\n');
}

} // namespace corvane
