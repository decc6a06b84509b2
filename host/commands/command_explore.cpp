// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/commands/console.h"
#include "host/commands/result_options.h"
#include "host/explorer/explorer_window.h"
#include "host/workbench/application.h"

#include <QCommandLineParser>

namespace corvane
{

namespace
{

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Opens a finished result in the connectome window."));
    addResultOptions(parser);
    if (!parseArguments(parser, arguments, {resultArgument()}))
        return Done;
    ExplorerWindow window(resultRequest(parser));
    window.show();
    return QCoreApplication::exec();
}

std::unique_ptr<QCoreApplication> makeApplication(const QStringList &arguments, int &argc,
                                                  char **argv)
{
    const bool isHelp =
        arguments.contains(QStringLiteral("--help")) || arguments.contains(QStringLiteral("-h"));
    if (isHelp)
        return makePlainApplication(arguments, argc, argv);
    if (!thereIsADisplay())
        throw UsageError(QStringLiteral("there is no display to open a window on; Corvane figure "
                                        "draws the same views without one"));
    leaveOwnConsole();
    return std::make_unique<Application>(argc, argv);
}

} // namespace

Command exploreCommand()
{
    return {"explore",
            "Corvane explore RESULT [--run NAME] [--labels F] [--centroids F] [--atlas F]",
            "Opens a result in the connectome window.", run, makeApplication};
}

} // namespace corvane
