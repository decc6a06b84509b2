// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/command_line.h"

#include "host/commands/commands.h"
#include "host/files/input_error.h"
#include "host/files/text_check.h"

#include <QSet>

#include <cstdio>

namespace corvane
{

namespace
{

/// The parser's own help, with a first line that tells which options must be given.
QByteArray helpText(const QCommandLineParser &parser, const QString &command)
{
    const QString text = parser.helpText();
    const int firstLineEnd = text.indexOf(QLatin1Char('\n'));
    return QStringLiteral("Usage:\n  %1\n%2")
        .arg(synopsisOf(command), text.mid(firstLineEnd))
        .toUtf8();
}

} // namespace

bool parseArguments(QCommandLineParser &parser, const QStringList &arguments,
                    const QStringList &plainArguments, const QStringList &repeatable, AndMore more)
{
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Tells all this."));
    parser.addOption(help);
    if (!parser.parse(arguments))
        throw UsageError(parser.errorText());
    if (parser.isSet(help)) {
        const QByteArray text = helpText(parser, arguments.front());
        std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stdout);
        return false;
    }
    refuseRepeatedOptions(parser, repeatable);
    const QStringList plain = parser.positionalArguments();
    const int wanted = plainArguments.size();
    if (plain.size() > wanted && more == AndMore::Refused)
        throw UsageError(QStringLiteral("unexpected argument ") + quoted(plain[wanted]));
    if (plain.size() < wanted)
        throw UsageError(plainArguments[plain.size()] + QStringLiteral(" is missing"));
    return true;
}

void refuseRepeatedOptions(const QCommandLineParser &parser, const QStringList &repeatable)
{
    QSet<QString> seen;
    for (const QString &option : parser.optionNames()) {
        if (seen.contains(option) && !repeatable.contains(option))
            throw UsageError(QStringLiteral("--%1 is given twice").arg(option));
        seen.insert(option);
    }
}

QString requiredValue(const QCommandLineParser &parser, const QString &option)
{
    QString value = parser.value(option);
    if (value.isEmpty())
        throw UsageError(QStringLiteral("--%1 is missing").arg(option));
    return value;
}

} // namespace corvane
