// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/nrrd_header.h"

#include "host/files/limits.h"
#include "host/files/text_check.h"

namespace corvane
{

namespace
{

constexpr auto subjectKey = "subject";
/// NRRD has a field "space" of its own.
constexpr auto spaceKey = "space name";

QString lineNumber(int number)
{
    return QStringLiteral("line %1").arg(number);
}

/// Values of keys write a line feed as "\n" and a backslash as "\\".
QString escapedValue(const QString &text)
{
    QString escaped = text;
    escaped.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    return escaped.replace(QLatin1Char('\n'), QLatin1String("\\n"));
}

QString unescapedValue(const QString &text)
{
    QString plain;
    for (int i = 0; i < text.size(); ++i) {
        const bool pair = text[i] == QLatin1Char('\\') && i + 1 < text.size();
        if (pair && text[i + 1] == QLatin1Char('n'))
            plain += QLatin1Char('\n');
        else if (pair && text[i + 1] == QLatin1Char('\\'))
            plain += QLatin1Char('\\');
        else {
            plain += text[i];
            continue;
        }
        ++i;
    }
    return plain;
}

} // namespace

NrrdHeader::NrrdHeader(const QString &path, const QByteArray &bytes, const QStringList &fields,
                       const QStringList &keys)
    : m_path(path)
{
    if (bytes.isEmpty())
        throw InputError(path, QStringLiteral("header"), QStringLiteral("an empty file"),
                         QStringLiteral("\"NRRD0004\""));
    int from = 0;
    for (int number = 1;; ++number) {
        const int end = bytes.indexOf('\n', from);
        if (number == 1) {
            const QByteArray magic = bytes.mid(0, end < 0 ? 8 : end);
            if (end < 0 || (magic != "NRRD0004" && magic != "NRRD0005"))
                throw InputError(path, lineNumber(1), quoted(magic, 16),
                                 QStringLiteral("\"NRRD0004\" or \"NRRD0005\""));
        } else if (end < 0 || end >= longest) {
            throw InputError(path, lineNumber(number),
                             end < 0 && bytes.size() < longest
                                 ? QStringLiteral("the end of the file")
                                 : QStringLiteral("a header of more than %1 bytes").arg(longest),
                             QStringLiteral("the empty line that ends the header"));
        } else if (end == from) {
            m_length = end + 1;
            return;
        } else {
            addLine(bytes.mid(from, end - from), number, fields, keys);
        }
        from = end + 1;
    }
}

void NrrdHeader::addLine(const QByteArray &line, int number, const QStringList &fields,
                         const QStringList &keys)
{
    if (line.startsWith('#'))
        return;
    const std::optional<QString> text = fromStrictUtf8(line);
    if (!text)
        throw InputError(m_path, lineNumber(number), quoted(line), QStringLiteral("UTF-8"));

    const int colon = text->indexOf(QLatin1Char(':'));
    const QStringRef separator = text->midRef(colon, 2);
    const bool isKey = colon > 0 && separator == QLatin1String(":=");
    const bool isField = colon > 0 && separator == QLatin1String(": ");
    if (!isKey && !isField)
        throw InputError(m_path, lineNumber(number), quoted(*text),
                         QStringLiteral("\"field: value\" or \"key:=value\""));

    const QString name = text->left(colon);
    const QStringList &known = isKey ? keys : fields;
    if (!known.contains(name))
        throw InputError(m_path, lineNumber(number),
                         (isKey ? QStringLiteral("the key ") : QStringLiteral("the field ")) +
                             quoted(name),
                         QStringLiteral("one of ") + known.join(QStringLiteral(", ")));
    if (has(name))
        throw InputError(m_path, lineNumber(number), quoted(name) + QStringLiteral(" again"),
                         QStringLiteral("it once, as in line %1").arg(m_entries[name].line));
    const QString value = text->mid(colon + 2);
    m_entries.insert(name, {number, isKey ? unescapedValue(value) : value.trimmed()});
}

QString NrrdHeader::text(const QString &name) const
{
    const auto found = m_entries.find(name);
    if (found == m_entries.end())
        throw InputError(m_path, QStringLiteral("header"), QStringLiteral("no ") + quoted(name),
                         QStringLiteral("it once"));
    return found->text;
}

QStringList NrrdHeader::words(const QString &name, int count) const
{
    QStringList found = text(name).simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (found.size() != count)
        fail(name,
             count == 1 ? QStringLiteral("one value") : QStringLiteral("%1 values").arg(count));
    return found;
}

std::vector<int> NrrdHeader::wholeNumbers(const QString &name, int count, int lowest,
                                          int highest) const
{
    const WholeRange range{lowest, highest};
    std::vector<int> numbers;
    for (const QString &word : words(name, count)) {
        const std::optional<qint64> number = corvane::wholeNumber(word);
        if (!number || !range.holds(static_cast<double>(*number)))
            fail(name, quoted(word), range.text());
        numbers.push_back(static_cast<int>(*number));
    }
    return numbers;
}

int NrrdHeader::wholeNumber(const QString &name, int lowest, int highest) const
{
    return wholeNumbers(name, 1, lowest, highest).front();
}

std::array<double, 3> NrrdHeader::vector(const QString &name, const QString &text) const
{
    const QString expected = QStringLiteral("vectors \"(x,y,z)\" of finite numbers");
    if (!text.startsWith(QLatin1Char('(')) || !text.endsWith(QLatin1Char(')')))
        fail(name, quoted(text), expected);
    const QStringList parts = text.mid(1, text.size() - 2).split(QLatin1Char(','));
    if (parts.size() != 3)
        fail(name, quoted(text), expected);
    std::array<double, 3> result{};
    for (int axis = 0; axis < 3; ++axis) {
        const std::optional<double> number = finiteNumber(parts[axis]);
        if (!number)
            fail(name, quoted(text), expected);
        result[static_cast<std::size_t>(axis)] = *number;
    }
    return result;
}

void NrrdHeader::require(const QString &name, const QString &required) const
{
    if (text(name).simplified() != required)
        fail(name, quoted(required));
}

int NrrdHeader::version(const QString &name, const QStringList &secondKeys) const
{
    const QString number = text(name);
    if (number != QLatin1String("1") && number != QLatin1String("2"))
        fail(name, QStringLiteral("\"1\" or \"2\""));
    if (number == QLatin1String("1"))
        for (const QString &key : secondKeys)
            if (has(key))
                fail(key, QStringLiteral("a file of version 2 for that key"));
    return number.toInt();
}

Provenance NrrdHeader::provenance() const
{
    const auto label = [this](const char *key) {
        const QString name = QString::fromLatin1(key);
        if (!has(name))
            return QString();
        if (text(name).isEmpty())
            fail(name, QStringLiteral("a text, or no such line"));
        return text(name);
    };
    return {label(subjectKey), label(spaceKey)};
}

void NrrdHeader::fail(const BrokenRule &broken) const
{
    fail(QString::fromLatin1(broken.field), broken.found, broken.expected);
}

void NrrdHeader::fail(const QString &name, const QString &expected) const
{
    fail(name, quoted(text(name)), expected);
}

void NrrdHeader::fail(const QString &name, const QString &found, const QString &expected) const
{
    const auto entry = m_entries.find(name);
    throw InputError(m_path,
                     entry == m_entries.end()
                         ? QStringLiteral("header")
                         : QStringLiteral("line %1 (%2)").arg(QString::number(entry->line), name),
                     found, expected);
}

QStringList provenanceKeys()
{
    return {QString::fromLatin1(subjectKey), QString::fromLatin1(spaceKey)};
}

std::optional<BrokenRule> brokenRule(const Provenance &provenance)
{
    if (const auto fault = provenanceFault(provenance.subject))
        return BrokenRule{subjectKey, *fault, provenanceRule()};
    if (const auto fault = provenanceFault(provenance.space))
        return BrokenRule{spaceKey, *fault, provenanceRule()};
    return std::nullopt;
}

NrrdWriter &NrrdWriter::field(const char *name, const QByteArray &text)
{
    m_lines += QByteArray(name) + ": " + text + '\n';
    return *this;
}

NrrdWriter &NrrdWriter::key(const char *name, const QString &text)
{
    m_lines += QByteArray(name) + ":=" + escapedValue(text).toUtf8() + '\n';
    return *this;
}

NrrdWriter &NrrdWriter::keys(const Provenance &provenance)
{
    if (!provenance.subject.isEmpty())
        key(subjectKey, provenance.subject);
    if (!provenance.space.isEmpty())
        key(spaceKey, provenance.space);
    return *this;
}

QByteArray NrrdWriter::finished() const
{
    constexpr int multiple = 64;
    // What is added at least: "#" and its line feed, and the empty line.
    const int bare = m_lines.size() + 3;
    const int padding = (multiple - bare % multiple) % multiple;
    return m_lines + '#' + QByteArray(padding, '#') + "\n\n";
}

} // namespace corvane
