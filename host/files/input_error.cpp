// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/input_error.h"

#include "host/files/hidden_name.h"

namespace corvane
{

namespace
{

QString escaped(char16_t unit)
{
    switch (unit) {
    case u'\n':
        return QStringLiteral("\\n");
    case u'\r':
        return QStringLiteral("\\r");
    case u'\t':
        return QStringLiteral("\\t");
    default:
        return QStringLiteral("\\x%1").arg(uint(unit), 2, 16, QLatin1Char('0'));
    }
}

/// Control characters and lone halves of surrogate pairs, which no terminal can show.
bool needsEscape(const QString &text, int index)
{
    const QChar unit = text[index];
    if (unit.isHighSurrogate())
        return index + 1 == text.size() || !text[index + 1].isLowSurrogate();
    if (unit.isLowSurrogate())
        return index == 0 || !text[index - 1].isHighSurrogate();
    // U+2028 and U+2029 break lines as well.
    return unit.category() == QChar::Other_Control || unit == QChar(0x2028) ||
           unit == QChar(0x2029);
}

} // namespace

QString printable(const QString &text, int longest)
{
    QString shown;
    for (int i = 0; i < text.size(); ++i) {
        if (shown.size() >= longest && !text[i].isLowSurrogate())
            return shown + QStringLiteral("...");
        if (needsEscape(text, i))
            shown += escaped(text[i].unicode());
        else
            shown += text[i];
    }
    return shown;
}

QString printable(const QByteArray &bytes, int longest)
{
    QString shown;
    int from = 0;
    while (from < bytes.size()) {
        if (shown.size() >= longest)
            return shown + QStringLiteral("...");
        // The longest step of UTF-8 is four bytes: take the first length that decodes to one
        // character, or else the one byte that is none.
        int length = 1;
        QString character;
        for (; length <= 4 && from + length <= bytes.size(); ++length) {
            character = QString::fromUtf8(bytes.constData() + from, length);
            if (!character.contains(QChar::ReplacementCharacter))
                break;
            character.clear();
        }
        if (character.isEmpty()) {
            length = 1;
            character = escaped(static_cast<uchar>(bytes[from]));
            shown += character;
        } else {
            shown += printable(character);
        }
        from += length;
    }
    return shown;
}

QString quoted(const QString &text, int longest)
{
    return QLatin1Char('"') + printable(text, longest) + QLatin1Char('"');
}

QString quoted(const QByteArray &bytes, int longest)
{
    return QLatin1Char('"') + printable(bytes, longest) + QLatin1Char('"');
}

InputError::InputError(const QString &file, const QString &place, const QString &found,
                       const QString &expected)
    : std::runtime_error(QStringLiteral("%1: %2: found %3, expected %4")
                             .arg(printable(shownPath(file), 4096), place, found, expected)
                             .toStdString())
{
}

} // namespace corvane
