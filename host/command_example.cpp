// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands.h"
#include "host/example_dataset.h"
#include "host/import_report.h"

namespace corvane
{

int runExample(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Writes the example dataset into a folder and imports it."));
    const auto folder = QStringLiteral("DIR");
    parser.addPositionalArgument(folder, QStringLiteral("The folder for the files."));
    if (!parseArguments(parser, arguments, {folder}))
        return Done;

    printReport(writeExample(parser.positionalArguments().front()));
    return Done;
}

} // namespace corvane
