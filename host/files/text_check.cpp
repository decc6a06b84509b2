// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/text_check.h"

#include <QLocale>
#include <QTextCodec>
#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

} // namespace

std::optional<QString> fromStrictUtf8(const QByteArray &bytes)
{
    static QTextCodec *const utf8 = QTextCodec::codecForName("UTF-8");
    // The codec would drop a leading byte order mark without a word.
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    QString text = utf8->toUnicode(bytes.constData(), bytes.size(), &state);
    if (state.invalidChars > 0 || state.remainingChars > 0)
        return std::nullopt;
    return text;
}

std::optional<qint64> wholeNumber(const QString &text)
{
    const int start = text.startsWith(QLatin1Char('-')) ? 1 : 0;
    if (text.size() == start || !std::all_of(text.begin() + start, text.end(), isDigit))
        return std::nullopt;
    bool fits = false;
    const qint64 number = text.toLongLong(&fits);
    return fits ? std::optional(number) : std::nullopt;
}

std::optional<double> finiteNumber(const QString &text)
{
    if (text.isEmpty() || text.front().isSpace() || text.back().isSpace())
        return std::nullopt;
    bool valid = false;
    const double number = text.toDouble(&valid);
    return valid && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::optional<QString> nameFault(const QString &name)
{
    if (!name.isValidUtf16())
        return QStringLiteral("half of a character");
    const auto control = std::find_if(name.begin(), name.end(),
                                      [](QChar c) { return c.category() == QChar::Other_Control; });
    if (control != name.end())
        return QStringLiteral("a control character (%1)")
            .arg(uint(control->unicode()), 2, 16, QLatin1Char('0'));
    return std::nullopt;
}

QByteArray shortestDecimal(double number)
{
    return QByteArray::number(number, 'g', QLocale::FloatingPointShortest);
}

QString readableNumber(double number, int decimals)
{
    constexpr double large = 1e7;
    if (!(std::abs(number) >= large))
        return QString::number(number, 'f', decimals);
    constexpr int digits = 3;
    return QString::number(number, 'g', digits)
        .replace(QLatin1String("e+0"), QLatin1String("e"))
        .replace(QLatin1String("e+"), QLatin1String("e"));
}

} // namespace corvane
