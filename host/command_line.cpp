// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands.h"
#include "host/input_error.h"

#include <cstdio>

namespace corvane
{

namespace
{

/// The parser's own help, with the subcommand in its first line.
QByteArray helpText(const QCommandLineParser &parser, const QString &command)
{
    const QString text = parser.helpText();
    const int firstLineEnd = text.indexOf(QLatin1Char('\n'));
    return QStringLiteral("Usage: Corvane %1 [options]%2")
        .arg(command, text.mid(firstLineEnd))
        .toUtf8();
}

} // namespace

bool parseArguments(QCommandLineParser &parser, const QStringList &arguments, int plainArguments)
{
    const QCommandLineOption help = parser.addHelpOption();
    if (!parser.parse(arguments))
        throw UsageError(parser.errorText());
    if (parser.isSet(help)) {
        const QByteArray text = helpText(parser, arguments.front());
        std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stdout);
        return false;
    }
    const QStringList plain = parser.positionalArguments();
    if (plain.size() > plainArguments)
        throw UsageError(QStringLiteral("unexpected argument ") + quoted(plain[plainArguments]));
    if (plain.size() < plainArguments)
        throw UsageError(QStringLiteral("found %1 arguments besides options, expected %2")
                             .arg(plain.size())
                             .arg(plainArguments));
    return true;
}

QString requiredValue(const QCommandLineParser &parser, const QString &option)
{
    const QStringList values = parser.values(option);
    if (values.isEmpty() || values.front().isEmpty())
        throw UsageError(QStringLiteral("--%1 is missing").arg(option));
    if (values.size() > 1)
        throw UsageError(QStringLiteral("--%1 is given twice").arg(option));
    return values.front();
}

} // namespace corvane
