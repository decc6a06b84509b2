// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/commands/console.h"
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
    const QString result = QStringLiteral("RESULT");
    parser.addPositionalArgument(
        result, QStringLiteral("A folder of connectome, compute or group, a participant's func "
                               "folder of a study, or a matrix."));
    const auto text = [](const char *value) { return QString::fromLatin1(value); };
    parser.addOptions({
        {text("run"),
         QStringLiteral("Which run of the folder: what its files begin with, up to the atlas."),
         text("name")},
        {text("labels"), QStringLiteral("A table of labels with networks and sides."),
         text("file")},
        {text("centroids"), QStringLiteral("A table of nodes with x, y and z in mm."),
         text("file")},
        {text("atlas"), QStringLiteral("An atlas, a mask or an anatomy, for the brain's outline."),
         text("file")},
    });
    if (!parseArguments(parser, arguments, {result}))
        return Done;
    ExplorerWindow window({parser.positionalArguments().front(), parser.value(text("run")),
                           parser.value(text("labels")), parser.value(text("centroids")),
                           parser.value(text("atlas"))});
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
