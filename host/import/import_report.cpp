// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/import_report.h"

#include <cstdio>

namespace corvane
{

void printReport(const ImportReport &report)
{
    for (const QString &note : report.notes)
        std::fprintf(stderr, "%s\n", note.toUtf8().constData());
    for (const QString &line : report.summary)
        std::printf("%s\n", line.toUtf8().constData());
}

} // namespace corvane
