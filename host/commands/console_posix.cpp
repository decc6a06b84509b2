// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/console.h"

#include <QTextCodec>

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
    for (int n = 1; n < argc; ++n)
        texts += QString::fromLocal8Bit(argv[n]);
    return texts;
}

void leaveOwnConsole() {}

} // namespace corvane
