// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/counted.h"
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/commands/measure_time.h"
#include "host/compute/graph_files.h"
#include "host/files/graph_table.h"
#include "host/files/input_error.h"
#include "host/files/text_check.h"

#include <QCommandLineParser>

#include <cstdio>

namespace corvane
{

namespace
{

std::vector<GraphMeasure> measuresOf(const QString &text)
{
    if (text.isEmpty())
        return graphMeasuresOfTables();
    const std::vector<GraphMeasure> all = graphMeasuresOfTables();
    std::vector<GraphMeasure> measures;
    QStringList names;
    for (const GraphMeasure &measure : all)
        names += QLatin1String(measure.column);
    for (const QString &part : text.split(QLatin1Char(','))) {
        const int place = names.indexOf(part.trimmed());
        if (place < 0)
            throw UsageError(QStringLiteral("--measures: found %1, expected some of: %2")
                                 .arg(quoted(part.trimmed()), names.join(QStringLiteral(", "))));
        measures.push_back(all[std::size_t(place)]);
    }
    return measures;
}

QStringList writeWithProgress(const QString &folder, const GraphTable &graph,
                              const GraphRequest &request)
{
    TerminalSteps steps;
    const auto watch = [&](const GraphMeasure &measure) {
        steps.end();
        if (QLatin1String(measure.column) == QLatin1String("local_efficiency"))
            tellTimeOfLocalEfficiency(graph.weights, request.threads);
        return steps.begin(QString::fromUtf8(measure.name));
    };
    return writeGraphFiles(folder, graph, request, watch, steps.watch());
}

GraphTable readWithProgress(const QString &path)
{
    const TerminalProgress progress(QStringLiteral("reading"));
    return readGraphTable(path);
}

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
        {QStringLiteral("measures"),
         QStringLiteral("Only these columns of the table, with commas between them."),
         QStringLiteral("names")},
        {QStringLiteral("mst"), QStringLiteral("Also write the minimum spanning tree.")},
        {QStringLiteral("out"), QStringLiteral("The folder for the tables."),
         QStringLiteral("folder")},
    });
    if (!parseArguments(parser, arguments, {matrix}))
        return Done;

    const QString folder = requiredValue(parser, QStringLiteral("out"));
    GraphRequest request;
    request.measures = measuresOf(parser.value(QStringLiteral("measures")));
    request.withTree = parser.isSet(QStringLiteral("mst"));
    const GraphTable graph = readWithProgress(parser.positionalArguments().front());
    const QStringList kept = writeWithProgress(folder, graph, request);
    for (const QString &note : graph.notes + graphNotes(graph.weights) + kept)
        std::fprintf(stderr, "%s\n", note.toUtf8().constData());
    std::printf("%s: %s\n", folder.toUtf8().constData(),
                counted(graph.weights.rows(), "node").toUtf8().constData());
    return Done;
}

} // namespace

Command graphCommand()
{
    return {"graph", "Corvane graph MATRIX.csv [--measures NAME,NAME] [--mst] --out DIR",
            "Computes the graph measures of a matrix.", run};
}

} // namespace corvane
