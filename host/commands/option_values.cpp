// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/option_values.h"

#include "host/files/input_error.h"
#include "host/files/text_check.h"

namespace corvane
{

namespace
{

[[noreturn]] void fail(const QString &option, const QString &found, const QString &expected)
{
    throw UsageError(
        QStringLiteral("--%1: found %2, expected %3").arg(option, quoted(found), expected));
}

} // namespace

std::optional<double> numberValue(const QCommandLineParser &parser, const char *option,
                                  double least)
{
    const QString name = QLatin1String(option);
    const QString text = parser.value(name);
    if (!parser.isSet(name) && text.isEmpty())
        return std::nullopt;
    const std::optional<double> number = finiteNumber(text);
    if (!number || *number < least)
        fail(name, text, QStringLiteral("a number of %1 or more").arg(least));
    return number;
}

std::optional<qint64> wholeValue(const QCommandLineParser &parser, const char *option, qint64 least)
{
    const QString name = QLatin1String(option);
    const QString text = parser.value(name);
    if (!parser.isSet(name) && text.isEmpty())
        return std::nullopt;
    const std::optional<qint64> number = wholeNumber(text);
    if (!number || *number < least)
        fail(name, text, QStringLiteral("a whole number of %1 or more").arg(least));
    return number;
}

} // namespace corvane
