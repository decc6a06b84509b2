// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/counted.h"
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/compute/graph_files.h"
#include "host/files/graph_table.h"

#include <QCommandLineParser>

#include <cstdio>

namespace corvane
{

namespace
{

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Computes the graph measures of a square matrix of connection strengths."));
    const auto matrix = QStringLiteral("MATRIX.csv");
    parser.addPositionalArgument(
        matrix,
        QStringLiteral("Numbers with commas, tabs, semicolons or blanks between them, with or "
                       "without names around them."));
    parser.addOptions({
        {QStringLiteral("mst"), QStringLiteral("Also write the minimum spanning tree.")},
        {QStringLiteral("out"), QStringLiteral("The folder for the tables."),
         QStringLiteral("folder")},
    });
    if (!parseArguments(parser, arguments, {matrix}))
        return Done;

    const QString folder = requiredValue(parser, QStringLiteral("out"));
    const GraphTable graph = readGraphTable(parser.positionalArguments().front());
    const QStringList kept = writeGraphFiles(folder, graph, parser.isSet(QStringLiteral("mst")));
    for (const QString &note : graph.notes + graphNotes(graph.weights) + kept)
        std::fprintf(stderr, "%s\n", note.toUtf8().constData());
    std::printf("%s: %s\n", folder.toUtf8().constData(),
                counted(graph.weights.rows(), "node").toUtf8().constData());
    return Done;
}

} // namespace

Command graphCommand()
{
    return {"graph", "Corvane graph MATRIX.csv [--mst] --out DIR",
            "Computes the graph measures of a matrix.", run};
}

} // namespace corvane
