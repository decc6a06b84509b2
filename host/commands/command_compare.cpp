// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/counted.h"
#include "host/commands/command_line.h"
#include "host/commands/command_table.h"
#include "host/commands/commands.h"
#include "host/commands/option_values.h"
#include "host/files/progress.h"
#include "host/group/map_files.h"

#include <QCommandLineParser>

#include <cstdio>

namespace corvane
{

namespace
{

void addOptions(QCommandLineParser &parser)
{
    const auto column = QStringLiteral("column");
    const auto number = QStringLiteral("number");
    parser.addOptions({
        {QStringLiteral("column"), QStringLiteral("The column of the first map."), column},
        {QStringLiteral("column-b"),
         QStringLiteral("The column of the second map; --column if that is there."), column},
        {QStringLiteral("permutations"), QStringLiteral("How many."), number,
         QStringLiteral("5000")},
        {QStringLiteral("seed"), QStringLiteral("Of the permutations."), number,
         QStringLiteral("1")},
        {QStringLiteral("plots"), QStringLiteral("Also draw the nodes.")},
        {QStringLiteral("out"), QStringLiteral("The folder for the tables."),
         QStringLiteral("folder")},
    });
}

void print(const statistics::MapComparison &found)
{
    std::printf("%s: Pearson %.4f (p = %.4g), Spearman %.4f (p = %.4g)\n",
                counted(qint64(found.nodes), "node").toUtf8().constData(), found.pearson,
                found.p_pearson, found.spearman, found.p_spearman);
    std::printf("%s\n", mapPNote().toUtf8().constData());
}

void write(const QString &path, const MapRequest &request, const statistics::MapComparison &found,
           bool plots)
{
    OutputFolder folder(path, QStringLiteral("compare"));
    writeMapFiles(folder, request, found);
    if (plots)
        writeMapPicture(folder, request, found);
    for (const QString &line : folder.commit())
        std::fprintf(stderr, "%s\n", line.toUtf8().constData());
}

statistics::MapComparison comparedWithProgress(const MapRequest &request)
{
    TerminalProgress progress(QStringLiteral("testing"));
    return statistics::compare_maps(
        request.matched.first, request.matched.second, request.permutations, request.seed,
        [&](statistics::Index done, statistics::Index count) { progress.show(done, count); });
}

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Correlates two maps, which hold one number for each node."));
    const auto first = QStringLiteral("MAP_A");
    const auto second = QStringLiteral("MAP_B");
    const auto table = QStringLiteral("A table with a row for each node, such as features.csv or "
                                      "..._nodes.tsv.");
    parser.addPositionalArgument(first, table);
    parser.addPositionalArgument(second, table);
    addOptions(parser);
    if (!parseArguments(parser, arguments, {first, second}))
        return Done;
    const bool plots = parser.isSet(QStringLiteral("plots"));
    if (plots)
        requiredValue(parser, QStringLiteral("out"));

    const QString column = parser.value(QStringLiteral("column"));
    const QString columnB = parser.isSet(QStringLiteral("column-b"))
                                ? parser.value(QStringLiteral("column-b"))
                                : column;
    MapRequest request;
    request.permutations = *wholeValue(parser, "permutations", 1);
    request.seed = static_cast<std::uint64_t>(*wholeValue(parser, "seed", 0));
    request.first = readBrainMap(parser.positionalArguments()[0], column);
    request.second = readBrainMap(parser.positionalArguments()[1], columnB);
    request.matched = matchMaps(request.first, request.second);
    const statistics::MapComparison found = comparedWithProgress(request);
    for (const QString &note : request.matched.notes)
        std::fprintf(stderr, "%s\n", note.toUtf8().constData());
    if (parser.isSet(QStringLiteral("out")))
        write(parser.value(QStringLiteral("out")), request, found, plots);
    print(found);
    return Done;
}

} // namespace

Command compareCommand()
{
    return {"compare",
            R"(Corvane compare MAP_A MAP_B [--column NAME] [--column-b NAME]
                    [--permutations N] [--seed N] [--plots] [--out DIR])",
            "Correlates two maps of values per node.", run, makePlotsApplication};
}

} // namespace corvane
