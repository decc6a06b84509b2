// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/console.h"

#include "host/commands/commands.h"
#include "host/files/input_error.h"
#include "host/files/text_check.h"

#include <QTextCodec>

#include <optional>

namespace corvane
{

Console::Console()
{
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

Console::~Console() = default;

QStringList Console::arguments(int argc, char **argv) const
{
    QStringList texts;
    for (int n = 1; n < argc; ++n) {
        const std::optional<QString> text = fromStrictUtf8(argv[n]);
        if (!text)
            throw UsageError(QStringLiteral("argument %1: found %2, expected UTF-8")
                                 .arg(QString::number(n), quoted(QByteArray(argv[n]))));
        texts += *text;
    }
    return texts;
}

void leaveOwnConsole() {}

} // namespace corvane
