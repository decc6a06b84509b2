// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/import/example_dataset.h"

namespace corvane
{

namespace
{

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Writes the example dataset into a folder and imports it."));
    const auto folder = QStringLiteral("DIR");
    parser.addPositionalArgument(folder, QStringLiteral("The folder for the files."));
    if (!parseArguments(parser, arguments, {folder}))
        return Done;

    ImportReport report;
    {
        TerminalProgress progress(QStringLiteral("writing the example"));
        report = writeExample(parser.positionalArguments().front(), progress.watch());
    }
    printReport(report);
    return Done;
}

} // namespace

Command exampleCommand()
{
    return {"example", "Corvane example DIR", "Writes the example dataset and imports it.", run};
}

} // namespace corvane
